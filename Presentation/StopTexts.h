#pragma once

#include "Presentation/Translation.h"

#include <cstddef>
#include <string>

/// What the front ends say when a clone can't simply be stopped.
namespace quorvel {

/// Returns that this many processes of the clone `name` go on although they were asked to end.
[[nodiscard]] std::string stillRunningText(const std::string& name, std::size_t left,
                                           const Translate& translate = inEnglish);

/// Returns what ending by force costs.
[[nodiscard]] std::string lossText(const Translate& translate = inEnglish);

/// Returns that something that can't be told to be the clone's uses its data folder.
[[nodiscard]] std::string usedElsewhereText(const std::string& name,
                                            const Translate& translate = inEnglish);

} // namespace quorvel
