#pragma once

#include "Presentation/Translation.h"

#include <cstddef>
#include <string>

/// What the front ends say when a clone can't simply be stopped.
namespace quorvel {

/// Returns the message that `left` processes of the clone `name` are still running although they
/// were asked to end.
[[nodiscard]] std::string stillRunningText(const std::string& name, std::size_t left,
                                           const Translate& translate);

/// Returns the warning that a clone ended by force loses what it has not saved.
[[nodiscard]] std::string lossText(const Translate& translate);

/// Returns the message that the clone is not running, but its data folder is in use by a program
/// that may be another clone's.
[[nodiscard]] std::string usedElsewhereText(const std::string& name, const Translate& translate);

} // namespace quorvel
