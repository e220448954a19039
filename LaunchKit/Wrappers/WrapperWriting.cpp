#include "LaunchKit/Wrappers/WrapperWriting.h"

#include "Base/BundleLayout.h"
#include "Base/PathText.h"
#include "Base/StableHash.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Launching/HelperProgram.h"
#include "LaunchKit/Launching/StatusItemStart.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/copying/FileCopy.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"

#include <cerrno>
#include <unistd.h>
#include <utility>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

void removeOldFile(const fs::path& file) {
    if (::unlink(file.c_str()) != 0 && errno != ENOENT) {
        throw PlatformError::fromErrno(file, "replaced");
    }
}

void replaceProgram(const fs::path& program, const fs::path& destination) {
    removeOldFile(destination);
    copyFile(program, destination);
    std::error_code code;
    fs::permissions(destination, fs::perms{0755}, code);
    if (code) {
        throw PlatformError(code, destination, "made executable");
    }
}

void replaceWebHost(const fs::path& module, const fs::path& wrapper) {
    createDirectories(frameworksOf(wrapper));
    removeOldFile(webHostOf(wrapper));
    copyFile(module, webHostOf(wrapper));
}

void replaceIcon(const WrapperContents& contents, const fs::path& wrapper) {
    removeOldFile(iconOf(wrapper));
    removeOldFile(chosenIconOf(wrapper));
    if (!contents.icon) {
        return;
    }
    installIcon(*contents.icon, contents.label, iconOf(wrapper));
    // Without the label, the icon itself is the chosen one.
    if (contents.notes && contents.icon->source == IconSource::chosen &&
        isVisible(contents.label)) {
        copyFile(contents.icon->file, chosenIconOf(wrapper));
    }
}

void writeNotes(const WrapperContents& contents, const fs::path& wrapper) {
    if (!contents.notes) {
        return;
    }
    WrapperNotes notes = *contents.notes;
    if (contents.runner) {
        notes.helpers = unusualHelperFolder(*contents.runner);
    }
    notes.writtenList = contents.hasUsersEntries ? "" : stableHash(contents.list);
    if (!contents.keepsIcon) {
        notes.writtenIcon = fileHash(iconOf(wrapper));
    }
    notes.write(wrapper);
}

} // namespace

void addParts(WrapperContents& contents, const InstanceConfig& config, const fs::path& runner) {
    const auto beside = [&](std::string_view name) {
        fs::path part = runner.parent_path() / name;
        return itemExists(part) ? std::optional(std::move(part)) : std::nullopt;
    };
    if (config.kind == ShortcutKind::web) {
        contents.webHost = beside(webHostModule);
    } else if (needsStatusItem(config)) {
        contents.statusItem = beside(statusItemProgram);
    }
}

void writeWrapper(const fs::path& wrapper, const WrapperContents& contents) {
    createDirectories(wrapper); // separately, so that an error names it
    createDirectories(executablesOf(wrapper));
    createDirectories(resourcesOf(wrapper));
    if (contents.runner) {
        replaceProgram(*contents.runner, runnerOf(wrapper));
    }
    if (contents.webHost) {
        replaceWebHost(*contents.webHost, wrapper);
    }
    if (contents.statusItem) {
        createDirectories(helpersOf(wrapper));
        replaceProgram(*contents.statusItem, statusItemOf(wrapper));
    }
    writeFile(configOf(wrapper), contents.config, Flush::later);
    if (!contents.keepsIcon) {
        replaceIcon(contents, wrapper);
    }
    writeFile(infoPlistOf(wrapper), contents.list, Flush::later);
    writeFile(joinAsText(contentsOf(wrapper), BundleItem::pkgInfo), "APPL????", Flush::later);
    writeNotes(contents, wrapper);
}

} // namespace quorvel
