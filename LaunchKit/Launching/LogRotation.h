#pragma once

#include <cstdint>
#include <string>

namespace quorvel {

/// The size in bytes above which a log is set aside.
inline constexpr std::uintmax_t largestLog = std::uintmax_t{10} << 20U;

/// Renames the log in a clone's data folder, which must be expanded, if it is larger than
/// `largestLog`: to NAME.1, what had that name to NAME.2, and so on; the oldest of three is
/// replaced. A program that has a log open goes on writing into it under its new name. Does nothing
/// if one of them is not a plain file; if one can't be renamed, it and all newer ones stay. Never
/// fails. Call it before a run opens the log.
void setAsideLargeLog(const std::string& home) noexcept;

} // namespace quorvel
