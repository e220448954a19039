#pragma once

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/desktop/Workspace.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The forms in which commands print what they found: JSON for scripts, text for people.
namespace quorvel {

[[nodiscard]] nlohmann::json jsonForm(const InstanceRecord& record,
                                      const RunningApplications& running);
[[nodiscard]] nlohmann::json jsonForm(const AppBundle& bundle);

/// The document as it goes to standard output, harmless to a terminal. Bytes that are no UTF-8
/// become U+FFFD, since JSON has no other way to show them.
[[nodiscard]] std::string document(const nlohmann::json& value);

/// A table with one line a clone.
[[nodiscard]] std::string listing(const std::vector<InstanceRecord>& records,
                                  const RunningApplications& running);

/// Everything about one clone, one fact a line. `logSize` is in bytes, absent without a log.
[[nodiscard]] std::string description(const InstanceRecord& record, bool running,
                                      std::optional<std::uintmax_t> logSize);
[[nodiscard]] std::string description(const AppBundle& bundle);

/// "734 bytes", "1.5 kB", "2.0 GB".
[[nodiscard]] std::string sizeText(std::uintmax_t bytes);

} // namespace quorvel
