#include "CommandLine/CloneLookup.h"

#include "CommandLine/CommandContext.h"
#include "CommandLine/PathWords.h"
#include "LaunchKit/Changes/ChangeRecovery.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"

#include <utility>

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
    const fs::path bundle = absoluteFile(path);
    auto record = registry.record(bundle);
    if (!record && !itemOrLinkExists(bundle)) {
        // Only the folders that are searched are put right at every start.
        restoreClones({bundle.parent_path()});
        record = registry.record(bundle);
    }
    if (record) {
        return std::move(*record);
    }
    throw CommandError(itemExists(bundle) ? "Not a clone: " + bundle.string()
                                          : "There is no clone at " + bundle.string());
}

} // namespace

std::optional<fs::path> findDamagedClone(const InstanceRegistry& registry,
                                         const std::string& words) {
    // If the working folder was removed, no relative path can be resolved.
    if (!isPath(words) && (!itemExists(words) || !clonesNamed(registry, words).empty())) {
        return std::nullopt;
    }
    fs::path bundle = absoluteFile(words);
    return isDamagedWrapper(bundle) ? std::optional(std::move(bundle)) : std::nullopt;
}

InstanceRecord findClone(const InstanceRegistry& registry, const std::string& words) {
    if (isPath(words)) {
        return cloneAt(registry, words);
    }
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
    if (words.find('/') != std::string::npos || itemExists(words)) {
        return cloneAt(registry, words);
    }
    throw CommandError("There is no clone named “" + words + "”.");
}

std::optional<std::string> linksChoice(const InstanceRegistry& registry,
                                       const std::optional<std::string>& words) {
    if (!words || *words == linksDefault) {
        return std::nullopt;
    }
    if (*words == linksInside) {
        return words;
    }
    for (const InstanceRecord& record : registry.list()) {
        if (record.config.bundleId == *words) {
            return record.bundleURL.string();
        }
    }
    return findClone(registry, *words).bundleURL.string();
}

} // namespace quorvel
