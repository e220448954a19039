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
    WrapperFactory::Request request{};      ///< without what the next members add to it
    std::optional<std::string> target{};    ///< as `findApp` takes it
    std::vector<std::string> environment{}; ///< entries KEY=VALUE
    std::vector<std::string> infoPlist{};   ///< entries KEY=VALUE
    IconLabel label{.colorHex = "#FFFFFF"};
    std::vector<std::string> extraArgs{};
    bool noExtraArgs = false;
    bool noDefaultEnvironment = false;
    bool sharedHome = false;
    bool replace = false;
    bool seed = false;
    std::optional<std::filesystem::path> runner{};
    bool launch = false;
};

/// Adds the options of `create`, which set `options`; both must outlive the parsing. An empty text
/// counts as an absent option, except for the runner. Paths become absolute; those that the
/// configuration keeps may begin with "~".
void addCreateOptions(CLI::App& create, CreateOptions& options);

/// Returns the complete request. Throws `UsageError` for missing or conflicting options and for
/// entries without a key, and `InvalidRequest` for an invalid name.
[[nodiscard]] WrapperFactory::Request requestFrom(const CreateOptions& options);

} // namespace quorvel
