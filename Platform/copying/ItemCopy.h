#pragma once

#include "Platform/files/FileHandle.h"

#include <ctime>
#include <optional>
#include <string>
#include <sys/stat.h>

/// The steps that copies of a tree have in common. `facts` is what the original was when the copy
/// of it began. Where something fails, `errno` says why.
namespace quorvel {

/// Creates the file `name` in the open folder `folder`, where nothing may be.
[[nodiscard]] FileHandle createFileIn(int folder, const char* name);

/// Gives an open copy the original's attributes, and then its dates.
[[nodiscard]] bool copyAttributesAndDates(int original, int copy, const struct stat& facts);

/// Copies a symbolic link from one open folder to the same name in another one, with its dates and,
/// where that is allowed, its owner. Returns what it leads to.
[[nodiscard]] std::optional<std::string> copyLinkIn(int from, int to, const char* name,
                                                    const struct stat& facts);

/// Returns whether two dates are the same to the nanosecond.
[[nodiscard]] bool isSameDate(const timespec& one, const timespec& other);

} // namespace quorvel
