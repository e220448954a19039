#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel::testing {

/// A new folder in the temporary folder, removed with its content by the destructor.
class TemporaryFolder {
public:
    TemporaryFolder();
    /// In the folder of `pattern`, whose last six characters are replaced.
    explicit TemporaryFolder(std::string pattern);
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const {
        return path_ / name;
    }

private:
    std::filesystem::path path_;
};

/// Sets a variable of this process's environment, or unsets it if `value` is absent; the destructor
/// restores the old value.
class ScopedEnvironment {
public:
    ScopedEnvironment(std::string name, const std::optional<std::string>& value);
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;
    ~ScopedEnvironment();

private:
    std::string name_;
    std::optional<std::string> old_;
};

/// A throw-away home for every home lookup of this process while the object lives.
class TemporaryHome {
public:
    TemporaryHome();

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const {
        return path_ / name;
    }

private:
    TemporaryFolder folder_;
    std::filesystem::path path_;
    ScopedEnvironment fixed_;
    ScopedEnvironment data_;  ///< the session's own would lead out of the home
    TemporaryFolder runtime_; ///< what clones leave there goes; short, since it has sockets
    ScopedEnvironment runtimeVariable_;
};

/// Writes a file and creates its missing parent folders.
void write(const std::filesystem::path& file, std::string_view bytes);

/// Returns the bytes of a file; empty if it can't be read.
[[nodiscard]] std::string read(const std::filesystem::path& file);

/// Returns every item below a folder, as relative path and content ("<folder>", "-> target" for a
/// link): two equal maps mean that nothing changed.
[[nodiscard]] std::map<std::string, std::string> treeOf(const std::filesystem::path& folder);

} // namespace quorvel::testing
