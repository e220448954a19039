#pragma once

#include "Platform/files/FileHandle.h"

namespace quorvel {

/// How a temporary folder on a file system without locks is treated.
enum class WithoutLocks { isOurs, mayBeInUse };

/// Locks an open folder until it is closed. Returns false if another program holds the lock, or if
/// there are no locks and the folder may be in use.
[[nodiscard]] bool lockFolder(const FileHandle& folder, WithoutLocks otherwise) noexcept;

/// Opens and locks the folder `name` in the open folder `parent`, which need not be open for
/// reading. The result is not open if another program holds the lock, or if that name is gone or
/// has become another folder's. The lock lasts as long as the descriptor.
[[nodiscard]] FileHandle lockedFolder(int parent, const char* name, WithoutLocks otherwise);

} // namespace quorvel
