#pragma once

#include "Platform/files/FileHandle.h"
#include "Platform/files/PlatformError.h"

#include <ctime>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>

/// The steps that copies of a tree have in common. `facts` is the original's status from when its
/// copy began. Where something fails, `errno` says why.
namespace quorvel {

/// Creates the file `name` in the open folder `folder`, with mode 0600, and returns it, open for
/// writing. The result is not open if that fails or anything has that name.
[[nodiscard]] FileHandle createFileIn(int folder, const char* name);

/// Sets the attributes of an open copy, and then its dates, to the original's. Returns false if
/// that fails.
[[nodiscard]] bool copyAttributesAndDates(int original, int copy, const struct stat& facts);

/// Copies a symbolic link from one open folder to the same name in another one, with its dates and,
/// where that is allowed, its owner. Returns what it leads to; std::nullopt if that fails.
[[nodiscard]] std::optional<std::string> copyLinkIn(int from, int to, const char* name,
                                                    const struct stat& facts);

/// Returns whether two dates are the same to the nanosecond.
[[nodiscard]] bool isSameDate(const timespec& one, const timespec& other);

/// Returns the error of copying `item` that failed with `error` at `inside`: a path relative to
/// `item`, "." or empty for `item` itself. `action` is what `item` couldn't be, "copied" or
/// "moved".
[[nodiscard]] PlatformError copyFailure(int error, const std::filesystem::path& inside,
                                        const std::filesystem::path& item,
                                        const std::string& action);

} // namespace quorvel
