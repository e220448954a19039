#pragma once

#include "LaunchKit/WrapperFactory.h"

#include <optional>
#include <string>
#include <vector>

namespace quorvel {

/// The words of `quorvelctl create`, before they are understood. Empty means not given.
struct CreateOptions {
    std::string kind = "app";
    std::string name{};
    std::string target{};
    std::string url{};
    std::string open{};
    std::string command{};
    std::vector<std::string> commandArgs{};
    std::string workingDirectory{};
    std::string home{};
    bool sharedHome = false;
    std::string output{};
    std::string bundleId{};
    std::string strategy = "home-override";
    std::string icon{};
    bool hideIcon = false;
    std::vector<std::string> extraArgs{};
    bool noExtraArgs = false;
    std::vector<std::string> environment{}; ///< "K=V"
    std::vector<std::string> plist{};       ///< "K=V"
    bool browser = false;
    bool openWith = false;
    std::string label{};
    std::string labelColor = "#FFFFFF";
    std::string labelPosition = "bottom";
    bool menuBarIcon = false;
    bool menuBarTemplate = false;
    bool isolateFolders = false;
    std::string runner{};
    bool launch = false;
};

/// The request that the words mean, with paths made absolute; those that the configuration keeps
/// may begin with "~". Throws `UsageError` for words that make no sense, `RefusedRequest` for a
/// name that can't be a clone's.
[[nodiscard]] WrapperFactory::Request requestFrom(const CreateOptions& options);

} // namespace quorvel
