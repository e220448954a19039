#include "LaunchKit/Copying/CloneDuplication.h"

#include "LaunchKit/Changes/CloneStop.h"
#include "LaunchKit/Copying/CloneWithData.h"
#include "LaunchKit/Homes/DataFolderGuard.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/ResolvedPath.h"
#include "Platform/removal/FileRemoval.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

// Two names may differ only in what an identifier can't contain.
std::string freeIdentifier(const InstanceRegistry& registry, const std::string& name) {
    const std::vector<InstanceRecord> clones = registry.list();
    const auto isTaken = [&](const std::string& identifier) {
        return std::any_of(clones.begin(), clones.end(), [&](const InstanceRecord& clone) {
            return clone.config.bundleId == identifier;
        });
    };
    const std::string first = WrapperFactory::defaultBundleId(name);
    std::string identifier = first;
    for (int number = 2; isTaken(identifier); ++number) {
        identifier = first + "-" + std::to_string(number);
    }
    return identifier;
}

// Returns the data to copy; none if the clone has none yet.
std::vector<DataPart> partsOf(const InstanceRecord& original) {
    const DataFolder data = dataFolderOf(original.config);
    if (data.isNone || data.isBehindLink || holdsUserHome(data.path)) {
        throw DataCopyError("“" + original.config.displayName +
                            "” has no data folder of its own that could be copied.");
    }
    return itemOrLinkExists(data.path) ? std::vector<DataPart>{{.from = data.path}}
                                       : std::vector<DataPart>();
}

DuplicatedClone duplicateWithData(const WrapperFactory& factory, const InstanceRecord& original,
                                  const WrapperFactory::Request& request,
                                  const DuplicationOptions& options) {
    const InitialData initial{
        .parts = partsOf(original), .copy = options.copy, .found = options.found};
    if (isCloneRunning(original)) {
        throw HomeInUse(original.config.displayName);
    }
    // Held until the copy is complete, so that the clone can't be started meanwhile.
    const std::optional<FileLock> lock =
        initial.parts.empty() ? std::nullopt : lockHome(original.config);
    CloneWithData made = createCloneWithData(factory, request, {}, initial, options.warn);
    return {
        .clone = std::move(made.clone), .data = made.data, .findings = std::move(made.findings)};
}

} // namespace

WrapperFactory::Request duplicateRequest(const InstanceRegistry& registry,
                                         const InstanceRecord& original, const std::string& name) {
    const InstanceConfig& config = original.config;
    WrapperFactory::Request request{static_cast<const CloneTarget&>(config),
                                    static_cast<const CloneOptions&>(config)};
    request.displayName = validatedCloneName(name);
    if (config.kind == ShortcutKind::app) {
        request.targetApp = config.targetAppURL();
    }
    request.outputDir = original.bundleURL.parent_path();
    request.bundleId = freeIdentifier(registry, request.displayName);
    request.infoPlistOverrides.erase("CFBundleIdentifier");
    request.original = resolvedPath(original.bundleURL).value_or(original.bundleURL);
    request.extraArgs = config.extraArgs;
    return request;
}

DuplicatedClone duplicateClone(const WrapperFactory& factory, const InstanceRegistry& registry,
                               const InstanceRecord& original, const DuplicationOptions& options) {
    const WrapperFactory::Request request = duplicateRequest(registry, original, options.name);
    if (options.withData) {
        return duplicateWithData(factory, original, request, options);
    }
    validateRequest(request, factory.runnerBinary);
    clearPlaceFor(request);
    CopiedData::requireFree(dataFolderFor(request));
    return {.clone = createClone(factory, request, {}, options.warn)};
}

} // namespace quorvel
