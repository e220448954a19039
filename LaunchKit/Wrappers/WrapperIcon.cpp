#include "LaunchKit/Wrappers/WrapperIcon.h"

#include "Base/Text.h"
#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Targets/AppIcon.h"
#include "Platform/copying/FileCopy.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"

#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

std::optional<WrapperIcon> iconOfEntry(const AppBundle& target,
                                       const std::optional<IconLabel>& label) {
    const auto file = appIconFile(target);
    if (!file) {
        return std::nullopt;
    }
    try {
        std::string converted = IconComposer::converted(*file, label);
        return WrapperIcon{*file, IconSource::target, std::move(converted)};
    } catch (const IconComposer::ComposeError&) {
        return std::nullopt; // a clone without an icon is better than none
    }
}

// Returns the icon with its label; empty if there is nothing to draw, or if drawing fails.
std::string labelledIcon(const WrapperIcon& icon, const std::optional<IconLabel>& label) {
    try {
        return isVisible(label) ? IconComposer::composed(icon.file, *label) : std::string();
    } catch (const IconComposer::ComposeError&) {
        return {};
    }
}

bool isWritten(const fs::path& file, const std::string& bytes) {
    try {
        writeFile(file, bytes);
        return true;
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace

std::string targetIconState(const AppBundle& target) {
    const auto file = appIconFile(target);
    return file ? fileState(*file) : std::string();
}

bool isVisible(const std::optional<IconLabel>& label) {
    return label && !Text::trimmingWhitespace(label->text).empty();
}

std::optional<WrapperIcon> wrapperIcon(const std::optional<fs::path>& chosen,
                                       const std::optional<AppBundle>& target,
                                       const std::optional<IconLabel>& label) {
    if (chosen && itemExists(*chosen)) {
        return WrapperIcon{*chosen, IconSource::chosen};
    }
    if (target && target->desktop) {
        return iconOfEntry(*target, label);
    }
    const auto file = target ? appIconFile(*target) : std::nullopt;
    return file ? std::optional(WrapperIcon{*file}) : std::nullopt;
}

void installIcon(const WrapperIcon& icon, const std::optional<IconLabel>& label,
                 const fs::path& destination) {
    if (!icon.converted.empty()) {
        writeFile(destination, icon.converted);
        return;
    }
    const std::string labelled = labelledIcon(icon, label);
    constexpr int tries = 2; // a temporary failure must not cost the label
    for (int count = 0; count < tries && !labelled.empty(); ++count) {
        if (isWritten(destination, labelled)) {
            return;
        }
    }
    // There may be space for the plain icon, but not for the drawn one.
    copyFile(icon.file, destination);
}

} // namespace quorvel
