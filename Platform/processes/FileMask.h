#pragma once

#include <sys/types.h>

namespace quorvel {

/// Sets this process's file mode creation mask, and returns the one before.
mode_t setFileMask(mode_t mask);

/// Sets it for as long as this object lives, so that programs that are started meanwhile have it.
/// The whole process has it then, so this should be short.
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
