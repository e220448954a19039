#pragma once

#include <sys/types.h>

namespace quorvel {

/// Sets this process's file mode creation mask, and returns the one before.
mode_t setFileMask(mode_t mask);

/// Sets the mask for as long as this object exists, for programs that are started meanwhile. It
/// applies to the whole process, so this should be short.
class ScopedFileMask {
public:
    explicit ScopedFileMask(mode_t mask) : before_(setFileMask(mask)) {}
    ScopedFileMask(const ScopedFileMask&) = delete;
    ScopedFileMask& operator=(const ScopedFileMask&) = delete;
    ~ScopedFileMask() { setFileMask(before_); }

private:
    mode_t before_;
};

} // namespace quorvel
