#pragma once

#include "LaunchKit/Launching/WindowIdentity.h"
#include "Presentation/Translation.h"

#include <map>
#include <optional>
#include <string>

/// What the front ends say about an application that is to be cloned.
namespace quorvel {

struct AppBundle;

/// Returns what a clone gives up for variables in its environment, in one sentence;
/// `std::nullopt` if it gives up nothing.
[[nodiscard]] std::optional<std::string>
environmentCost(const std::map<std::string, std::string>& environment, const Translate& translate);

/// Returns where the dock shows a clone's windows with the original's, in one sentence;
/// `std::nullopt` if it does so nowhere.
[[nodiscard]] std::optional<std::string> groupingNote(WindowGrouping grouping,
                                                      const Translate& translate);

/// Returns why the data of a Snap can't be kept apart, and the two commands that install it a
/// second time; `std::nullopt` for any other application.
[[nodiscard]] std::optional<std::string> snapReason(const AppBundle& app,
                                                    const Translate& translate);

} // namespace quorvel
