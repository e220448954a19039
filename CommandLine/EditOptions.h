#pragma once

#include "LaunchKit/Changes/CloneChange.h"
#include "LaunchKit/InstanceRegistry.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quorvel {

/// What the options of `quorvelctl edit` set.
struct EditOptions {
    std::vector<CloneEdit> edits{}; ///< one for each option given, in their order
    std::vector<std::string> arguments{};
    std::vector<std::string> extraArgs{};
    std::optional<std::string> labelColor{};
    std::optional<IconLabel::Position> labelPosition{};
    std::optional<std::string> links{}; ///< as `linksChoice` takes it
    std::optional<std::filesystem::path> runner{};
};

/// Adds the options of `edit`, which set `options`; both must outlive the parsing. Paths become
/// absolute, as those of `create`.
void addEditOptions(CLI::App& command, EditOptions& options);

/// Returns one edit that makes the edits of all options. The edit throws `UsageError` for options
/// that the clone's kind does not have or that need another one; `editFrom` itself throws as
/// `linksChoice` does.
[[nodiscard]] CloneEdit editFrom(const EditOptions& options, const InstanceRegistry& registry);

} // namespace quorvel
