#pragma once

/// Protection from removal that goes beyond permissions, and that binds even root.
namespace quorvel {

/// Whether the item `name` in an open folder is marked as immutable or append-only, a link itself
/// not followed: then neither it nor anything in it can be removed. False where that can't be told.
[[nodiscard]] bool isProtected(int folder, const char* name);

} // namespace quorvel
