#pragma once

#include <cstddef>
#include <dirent.h>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorvel {

/// An open folder. Looking up items relative to it is faster for thousands of files than using full
/// paths, and is not affected if the folder is renamed meanwhile.
class Folder {
public:
    /// Opens the folder at `path`. Returns std::nullopt if it is unreadable.
    [[nodiscard]] static std::optional<Folder> open(const std::filesystem::path& path);

    /// Takes over the descriptor of an open folder. Returns std::nullopt if it is -1 or unreadable.
    [[nodiscard]] static std::optional<Folder> owning(int descriptor);

    /// Returns the path that was given to `open`.
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    [[nodiscard]] int descriptor() const noexcept { return ::dirfd(stream_.get()); }

    /// Returns the names in it in the file system's order, including hidden ones but not "." and
    /// "..".
    [[nodiscard]] std::vector<std::string> entries();

    /// Returns whether anything is at `path`, relative to the folder. A dangling link counts as
    /// nothing.
    [[nodiscard]] bool has(const std::string& path) const;

    /// Reads the regular file at `path`, relative to the folder, into `bytes`. Returns false where
    /// `readFile` returns std::nullopt; `bytes` is unspecified then.
    [[nodiscard]] bool read(const std::string& path, std::size_t limit, std::string& bytes) const;

private:
    Folder(std::filesystem::path path, DIR* stream) : path_(std::move(path)), stream_(stream) {}

    struct Closer {
        void operator()(DIR* stream) const noexcept { ::closedir(stream); }
    };
    std::filesystem::path path_;
    std::unique_ptr<DIR, Closer> stream_;
};

} // namespace quorvel
