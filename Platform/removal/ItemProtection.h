#pragma once

/// Protection from removal beyond permissions, which applies even to root.
namespace quorvel {

/// Returns whether the item `name` in an open folder is marked as immutable or append-only, not
/// following a link: then neither it nor anything in it can be removed. Returns false if that can't
/// be determined.
[[nodiscard]] bool isProtected(int folder, const char* name);

} // namespace quorvel
