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

/// An open folder. What lies below it is found from here, which for thousands of files is quicker
/// than from the root each time, and the same folder however its path changes meanwhile.
class Folder {
public:
    /// Nothing when the folder can't be read.
    [[nodiscard]] static std::optional<Folder> open(const std::filesystem::path& path);

    /// The folder behind an open descriptor, or -1, which it takes over; nothing when that can't be
    /// read.
    [[nodiscard]] static std::optional<Folder> owning(int descriptor);

    /// As it was given.
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    [[nodiscard]] int descriptor() const noexcept { return ::dirfd(stream_.get()); }

    /// The names in it in the file system's order, hidden ones included, without "." and "..".
    [[nodiscard]] std::vector<std::string> entries();

    /// Whether anything is at `path`, relative to the folder; a dangling link counts as nothing.
    [[nodiscard]] bool has(const std::string& path) const;

    /// Puts the bytes of the regular file at `path`, relative to the folder, into `bytes`. False
    /// where `readFile` gives nothing; `bytes` is of no use then.
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
