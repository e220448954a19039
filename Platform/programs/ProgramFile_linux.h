#pragma once

#include "Platform/files/FileHandle.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// A program's file, open for a look at what it is made of. Only as much as that takes is read, at
/// places that the file's own figures name and that are checked.
class ProgramFile {
public:
    /// Returns std::nullopt unless a regular file can be read there (links followed). Never blocks.
    [[nodiscard]] static std::optional<ProgramFile> open(const std::filesystem::path& file);

    /// Returns the bytes at `offset`: `length` of them, or fewer at the end of the file.
    [[nodiscard]] std::string bytesAt(std::uint64_t offset, std::size_t length) const;

    /// Returns whether it is a program in machine code.
    [[nodiscard]] bool isElf() const;

    /// Returns whether it is a program with a file system image appended to it.
    [[nodiscard]] bool isAppImage() const;

    /// Returns the libraries that an ELF program asks for, such as "libgtk-3.so.0", `maxLibraries`
    /// at most. Empty for one of another byte order, and for one whose tables can't be right.
    [[nodiscard]] std::vector<std::string> neededLibraries() const;
    static constexpr std::size_t maxLibraries = 1000;

private:
    explicit ProgramFile(FileHandle file) : file_(std::move(file)) {}

    FileHandle file_;
};

} // namespace quorvel
