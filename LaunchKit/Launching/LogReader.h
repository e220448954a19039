#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/files/ItemIdentity.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace quorvel {

/// Reads a clone's log from its beginning and follows it, even if it is created later, set aside or
/// truncated. One thread at a time.
class LogReader {
public:
    /// For the clone with this data folder, which must be expanded.
    explicit LogReader(const std::string& home);

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

    /// Returns whether there is a log that can be read: a regular file, or a link to one.
    [[nodiscard]] bool hasLog();

    /// Returns the log's size in bytes; 0 if there is none.
    [[nodiscard]] std::uintmax_t size() const;

    /// Begins at that byte instead. Call it before anything is read.
    void skipTo(std::uintmax_t offset) { offset_ = offset; }

    /// Returns the next part of the log, at most 64 KiB; empty if nothing was added yet.
    [[nodiscard]] std::string next();

private:
    [[nodiscard]] bool openNew();
    [[nodiscard]] std::string readOn();

    std::filesystem::path path_;
    FileHandle file_{-1};
    ItemIdentity identity_{};
    std::uintmax_t offset_ = 0;
};

} // namespace quorvel
