#pragma once

#include <cerrno>
#include <system_error>

namespace quorvel {

/// Returns whether this `errno` says that a file system does not support an operation. ENOTSUP and
/// EOPNOTSUPP are the same number on Linux only.
[[nodiscard]] inline bool meansUnsupported(int error) {
    const std::error_code code(error, std::generic_category());
    return code == std::errc::not_supported || code == std::errc::operation_not_supported;
}

/// The same for renaming exclusively and for exchanging two items.
[[nodiscard]] inline bool meansNoSuchRename(int error) {
    return error == EINVAL || error == ENOSYS || meansUnsupported(error);
}

} // namespace quorvel
