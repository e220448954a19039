#include "LaunchKit/RequestCheck.h"

#include "LaunchKit/InstanceRegistry.h"
#include "Platform/FileSystem.h"
#include "Platform/Text.h"
#include "Platform/Utf8.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

bool holdsControlCharacters(const std::string& text) {
    return std::any_of(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) < 0x20 && c != '\n' && c != '\t') || c == 0x7F;
    });
}

// Whether the folder is missing, or readable and holds nothing else than these.
bool holdsAtMost(const fs::path& folder, std::initializer_list<std::string_view> names) {
    if (!itemOrLinkExists(folder)) {
        return true;
    }
    const auto entries = isSymbolicLink(folder) ? std::nullopt : directoryEntries(folder);
    return entries && std::all_of(entries->begin(), entries->end(), [&](const auto& entry) {
               return std::find(names.begin(), names.end(), entry) != names.end();
           });
}

// The same, all of them files.
bool holdsAtMostFiles(const fs::path& folder, std::initializer_list<std::string_view> names) {
    return holdsAtMost(folder, names) &&
           std::all_of(names.begin(), names.end(), [&](std::string_view name) {
               std::error_code code;
               const fs::file_type type = fs::symlink_status(folder / name, code).type();
               return type == fs::file_type::regular || type == fs::file_type::not_found;
           });
}

// What a generation that failed half-way leaves behind, a full disk's for one: it may be replaced
// like a whole clone.
bool isUnfinishedWrapper(const fs::path& wrapper) {
    const fs::path contents = wrapper / "Contents";
    // The runner comes first; resources without it are somebody's own.
    return holdsAtMost(wrapper, {"Contents"}) && holdsAtMost(contents, {"MacOS", "Resources"}) &&
           holdsAtMostFiles(contents / "MacOS", {"runner"}) &&
           (itemExists(contents / "MacOS" / "runner")
                ? holdsAtMostFiles(contents / "Resources", {"instance.json", "AppIcon.icns"})
                : holdsAtMost(contents / "Resources", {}));
}

// Making a clone again replaces it; anything else of that name is somebody's, and stays.
void refuseToReplaceOthers(const fs::path& wrapper) {
    if (itemOrLinkExists(wrapper) && !InstanceRegistry().record(wrapper) &&
        !isUnfinishedWrapper(wrapper)) {
        throw RefusedRequest(wrapper.string() +
                             " is not a clone; choose another name or folder for the new one.");
    }
}

// The old wrapper is gone before the new one is written, so nothing of it can go into the new one.
void refuseToUsePartsOf(const fs::path& wrapper, const std::optional<fs::path>& part) {
    std::error_code code;
    for (fs::path at = part ? fs::weakly_canonical(*part, code) : fs::path();
         !code && at.has_relative_path(); at = at.parent_path()) {
        if (isSameItem(at, wrapper)) {
            throw RefusedRequest(part->string() + " belongs to the clone that would be replaced.");
        }
    }
}

} // namespace

std::string checkedCloneName(const std::string& name) {
    std::string trimmed = Text::trimmingWhitespaceAndNewlines(name);
    if (!isUtf8(trimmed)) {
        throw RefusedRequest("The name “" + trimmed + "” is not UTF-8 text.");
    }
    if (trimmed.find('/') != std::string::npos || trimmed == "." || trimmed == "..") {
        throw RefusedRequest("The name “" + trimmed +
                             "” can’t be used: it must not hold “/” and not be “.” or “..”.");
    }
    if (holdsControlCharacters(trimmed)) {
        throw RefusedRequest("The name “" + trimmed + "” holds control characters.");
    }
    return trimmed;
}

void checkRequest(const WrapperFactory::Request& request, const std::optional<fs::path>& runner) {
    if (checkedCloneName(request.displayName).empty()) {
        return; // the factory refuses it by itself
    }
    const fs::path place = WrapperFactory::wrapperURL(request);
    refuseToReplaceOthers(place);
    for (const auto& part : {request.targetApp, request.customIcon, runner}) {
        refuseToUsePartsOf(place, part);
    }
}

} // namespace quorvel
