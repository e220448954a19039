#include "CommandLine/CloneLookup.h"

#include "CommandLine/Surroundings.h"
#include "Platform/FileSystem.h"
#include "Platform/UserPaths.h"

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::vector<InstanceRecord> clonesNamed(const InstanceRegistry& registry, const std::string& name) {
    std::vector<InstanceRecord> found;
    for (InstanceRecord& record : registry.list()) {
        if (record.config.displayName == name) {
            found.push_back(std::move(record));
        }
    }
    return found;
}

InstanceRecord cloneAt(const InstanceRegistry& registry, const std::string& path) {
    const fs::path bundle = UserPaths::expandTilde(absolutePath(path).string());
    if (auto record = registry.record(bundle)) {
        return std::move(*record);
    }
    throw CommandError(itemExists(bundle) ? "Not a clone: " + bundle.string()
                                          : "There is no clone at " + bundle.string());
}

} // namespace

fs::path absolutePath(const std::string& path) {
    if (path.empty() || path.front() == '~') {
        return path;
    }
    return withoutTrailingSlashes(fs::absolute(path).lexically_normal());
}

InstanceRecord findClone(const InstanceRegistry& registry, const std::string& words) {
    std::vector<InstanceRecord> named = clonesNamed(registry, words);
    if (named.size() == 1) {
        return std::move(named.front());
    }
    if (named.size() > 1) {
        std::string message = "Several clones are named “" + words + "”; give a path:";
        for (const InstanceRecord& record : named) {
            message += " " + record.bundleURL.string();
        }
        throw CommandError(message);
    }
    if (words.find('/') != std::string::npos || words.starts_with('~') || itemExists(words)) {
        return cloneAt(registry, words);
    }
    throw CommandError("There is no clone named “" + words + "”.");
}

} // namespace quorvel
