#include "LaunchKit/Launching/LinkOpener.h"

#include "Base/BundleName.h"
#include "Base/PathText.h"
#include "LaunchKit/CloneOptions.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/UserPaths.h"

namespace quorvel {
namespace {

// An identifier has no slash, so the result is not the path of any program.
std::string runnerOfCloneWithId(const std::string& id) {
    const std::filesystem::path folder = userApplicationsFolder();
    const auto names = directoryEntries(folder);
    for (const std::string& name : names.value_or(std::vector<std::string>{})) {
        const std::string wrapper = joinAsText(folder, name).string();
        const auto config =
            isAppBundleName(name) ? InstanceConfig::read(configOf(wrapper)) : std::nullopt;
        if (config && config->bundleId == id) {
            return runnerOf(wrapper);
        }
    }
    return id;
}

} // namespace

std::string linkOpenerProgram(const std::optional<std::string>& links) {
    if (!links || links->empty() || *links == linksDefault || *links == linksInside) {
        return {};
    }
    const std::string path = UserPaths::expandTilde(*links);
    return path.starts_with('/') ? runnerOf(path) : runnerOfCloneWithId(*links);
}

} // namespace quorvel
