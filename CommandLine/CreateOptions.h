#pragma once

#include "LaunchKit/WrapperFactory.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace quorvel {

/// What the options of `quorvelctl create` set.
struct CreateOptions {
    WrapperFactory::Request request{}; ///< but for what the next three add to it
    IconLabel label{.colorHex = "#FFFFFF"};
    std::vector<std::string> extraArgs{};
    bool noExtraArgs = false;
    bool sharedHome = false;
    std::optional<std::filesystem::path> runner{};
    bool launch = false;
};

/// Adds the options of `create`, which set `options`; both must outlive the parsing, which throws
/// `UsageError` for an entry without a key. An empty text means that the option was not given.
/// Paths become absolute; those that the configuration keeps may begin with "~".
void addCreateOptions(CLI::App& create, CreateOptions& options);

/// Returns the whole request. Throws `UsageError` for options that don't fit together, and
/// `InvalidRequest` for a name that can't be a clone's.
[[nodiscard]] WrapperFactory::Request requestFrom(const CreateOptions& options);

} // namespace quorvel
