#pragma once

#include <string_view>
#include <utility>

namespace quorvel {

/// Owns one file descriptor and closes it.
class FileHandle {
public:
    explicit FileHandle(int descriptor) noexcept : descriptor_(descriptor) {}
    FileHandle(FileHandle&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    FileHandle& operator=(FileHandle&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle();

    /// Returns -1 if nothing is open.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

    /// Returns the descriptor, which the caller now has to close.
    [[nodiscard]] int release() noexcept { return std::exchange(descriptor_, -1); }

    /// Writes all bytes, also after an interruption. Returns false if that fails (`errno` says
    /// why).
    bool write(std::string_view bytes) const noexcept;

private:
    int descriptor_;
};

} // namespace quorvel
