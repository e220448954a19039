#pragma once

#include <filesystem>

namespace quorvel::testing {

/// Forbids all change to a file as `chattr +i` does, until the end.
class ImmutableFile {
public:
    explicit ImmutableFile(std::filesystem::path file);
    ImmutableFile(const ImmutableFile&) = delete;
    ImmutableFile& operator=(const ImmutableFile&) = delete;
    ~ImmutableFile();

    /// False where the file system or the user's rights forbid it.
    [[nodiscard]] bool isSet() const { return isSet_; }

private:
    std::filesystem::path file_;
    bool isSet_;
};

} // namespace quorvel::testing
