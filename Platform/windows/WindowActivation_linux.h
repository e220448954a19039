#pragma once

#include "Platform/windows/ActivationError.h"
#include "Platform/windows/WindowOwner_linux.h"

#include <optional>

namespace quorvel {

/// Brings the topmost window of that application to the front, in the way that this desktop allows.
/// Waits up to a few seconds for it. Returns why it can't be done; std::nullopt if it was.
[[nodiscard]] std::optional<ActivationFailure> bringToFront(const WindowOwner& owner);

} // namespace quorvel
