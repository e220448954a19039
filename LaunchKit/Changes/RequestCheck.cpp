#include "LaunchKit/Changes/RequestCheck.h"

#include "Base/Text.h"
#include "Base/Utf8.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

bool containsControlCharacters(const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') || c == 0x7F;
    });
}

// Two clones with one data folder are not isolated, and deleting one would delete the other's data.
void refuseToShareData(const WrapperFactory::Request& request, const fs::path& wrapper,
                       const RequestPermissions& permissions) {
    const DataFolder data = dataFolderOf(request);
    if (data.isNone) {
        return;
    }
    const DataFolderGuard guard(InstanceRegistry(), wrapper);
    const ComparedItem place(data.path);
    const std::string subject = "The data folder " + data.path.string() + " ";
    if (guard.isInWrapper(place)) {
        throw InvalidRequest(subject + "is inside the clone itself; choose another one.");
    }
    if (const auto reason = permissions.sharedHome ? std::nullopt : guard.objection(place)) {
        throw SharedHome(subject + *reason + "; choose another one.");
    }
}

// The old wrapper is removed before the new one is written, so no part of it can be reused.
void refuseToUsePartsOf(const fs::path& wrapper, const std::optional<fs::path>& part) {
    std::error_code code;
    for (fs::path at = part ? fs::weakly_canonical(*part, code) : fs::path();
         !code && at.has_relative_path(); at = at.parent_path()) {
        if (isSameItem(at, wrapper)) {
            throw InvalidRequest(part->string() + " belongs to the clone that would be replaced.");
        }
    }
}

} // namespace

std::string validatedCloneName(const std::string& name) {
    std::string trimmed = Text::trimmingWhitespaceAndNewlines(name);
    if (!isUtf8(trimmed)) {
        throw InvalidRequest("The name “" + trimmed + "” is not UTF-8 text.");
    }
    if (trimmed.find('/') != std::string::npos || trimmed == "." || trimmed == "..") {
        throw InvalidRequest("The name “" + trimmed +
                             "” can’t be used: it must not contain “/” and not be “.” or “..”.");
    }
    if (containsControlCharacters(trimmed)) {
        throw InvalidRequest("The name “" + trimmed + "” contains control characters.");
    }
    return trimmed;
}

DataFolder dataFolderOf(const WrapperFactory::Request& request) {
    InstanceConfig config;
    config.instanceHome = request.instanceHome.value_or(
        WrapperFactory::defaultInstanceHome(validatedCloneName(request.displayName)));
    return dataFolderOf(config);
}

void requireReplaceable(const fs::path& wrapper, const RequestPermissions& permissions) {
    if (const auto record = InstanceRegistry().record(wrapper)) {
        if (!permissions.existingClone) {
            throw CloneExists("“" + record->config.displayName + "” already exists at " +
                              wrapper.string() + "; choose another name or folder.");
        }
        return;
    }
    if (!itemOrLinkExists(wrapper) || isUnfinishedWrapper(wrapper)) {
        return;
    }
    if (!isDamagedWrapper(wrapper)) {
        throw InvalidRequest(wrapper.string() +
                             " is not a clone; choose another name or folder for the new one.");
    }
    if (!permissions.damagedClone) {
        throw DamagedClone("The clone at " + wrapper.string() +
                           " can’t be read any more; delete it first, or choose another name.");
    }
}

void validateRequest(const WrapperFactory::Request& request, const std::optional<fs::path>& runner,
                     const RequestPermissions& permissions) {
    if (validatedCloneName(request.displayName).empty()) {
        return; // the factory itself refuses it
    }
    const fs::path place = WrapperFactory::wrapperURL(request);
    requireReplaceable(place, permissions);
    for (const auto& part : {request.targetApp, request.customIcon, runner}) {
        refuseToUsePartsOf(place, part);
    }
    refuseToShareData(request, place, permissions);
}

} // namespace quorvel
