#pragma once

#include "Platform/files/FileHandle.h"

#include <filesystem>

namespace quorvel::testing {

/// Makes a file immutable, as `chattr +i` does, while the object lives.
class ImmutableFile {
public:
    explicit ImmutableFile(const std::filesystem::path& file);
    ImmutableFile(const ImmutableFile&) = delete;
    ImmutableFile& operator=(const ImmutableFile&) = delete;
    ~ImmutableFile();

    /// Returns false if the file system or the user's permissions don't allow it.
    [[nodiscard]] bool isSet() const { return isSet_; }

private:
    FileHandle file_; ///< open, since it may be moved
    bool isSet_;
};

} // namespace quorvel::testing
