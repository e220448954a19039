#pragma once

#include "CommandLine/CommandContext.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/desktop/Workspace.h"
#include "Presentation/CloneFacts.h"

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <string>
#include <vector>

/// How commands print what they found: JSON for scripts, text for the user.
namespace quorvel {

/// Returns the record's bundle, configuration and icon, and whether its wrapper runs.
[[nodiscard]] nlohmann::json jsonForm(const InstanceRecord& record,
                                      const RunningApplications& running);
/// Returns what is known about an application, and the default arguments of its engine.
[[nodiscard]] nlohmann::json jsonForm(const AppBundle& bundle);

/// Returns the document as printed on standard output, safe for a terminal, with a line break at
/// its end. Bytes that are not UTF-8 become U+FFFD, since JSON has no other way to show them.
[[nodiscard]] std::string document(const nlohmann::json& value);

/// Returns a path as printed: unchanged for scripts, with control characters escaped on a terminal.
[[nodiscard]] std::string shownPath(const CommandContext& context,
                                    const std::filesystem::path& path);

/// Returns a table with one line per clone, safe for a terminal.
[[nodiscard]] std::string listing(const std::vector<InstanceRecord>& records,
                                  const RunningApplications& running);

/// Returns everything about one clone, safe for a terminal: one line per fact, or per line of its
/// value.
[[nodiscard]] std::string description(const InstanceRecord& record, const CloneState& state);
/// Returns what is known about an application in the same form.
[[nodiscard]] std::string description(const AppBundle& bundle);

} // namespace quorvel
