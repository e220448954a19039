#pragma once

#include "Platform/processes/Process.h"

#include <optional>
#include <string>

namespace quorvel {

struct AppBundle;
struct InstanceConfig;

/// Starts a program that sets the clone's word on the X11 windows of this process's children, if
/// `target`, the clone's application, has such windows and takes no word itself. It ends when this
/// process does. Returns `std::nullopt` if none is needed, or none is installed. Never throws.
[[nodiscard]] std::optional<Process>
startWindowNaming(const AppBundle& target, const InstanceConfig& config, const std::string& word);

} // namespace quorvel
