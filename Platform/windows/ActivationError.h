#pragma once

#include "Platform/files/PlatformError.h"

#include <filesystem>

namespace quorvel {

/// Why a running application could not be brought to the front.
enum class ActivationFailure {
    noWindow = 1, ///< it has none, or none yet
    notAllowed,   ///< the desktop lets only the user do it
    noDisplay,    ///< there is none, as in a remote shell
};

/// Returns the error about the application in `bundle`.
[[nodiscard]] PlatformError activationError(ActivationFailure failure,
                                            const std::filesystem::path& bundle);

/// Returns whether the error is one of these: the application is running nevertheless.
[[nodiscard]] bool isActivationError(const PlatformError& error);

} // namespace quorvel
