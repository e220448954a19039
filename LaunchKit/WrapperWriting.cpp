#include "LaunchKit/WrapperWriting.h"

#include "Base/BundleLayout.h"
#include "Base/PathText.h"
#include "Base/StableHash.h"
#include "LaunchKit/WrapperLayout.h"
#include "Platform/files/FileCopy.h"
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

void replaceRunner(const fs::path& runner, const fs::path& destination) {
    removeOldFile(destination);
    copyFile(runner, destination);
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
    notes.writtenList = contents.hasUsersEntries ? "" : stableHash(contents.list);
    if (!contents.keepsIcon) {
        notes.writtenIcon = fileHash(iconOf(wrapper));
    }
    notes.write(wrapper);
}

} // namespace

std::optional<fs::path> webHostBeside(const fs::path& runner) {
    fs::path module = runner.parent_path() / webHostModule;
    return itemExists(module) ? std::optional(std::move(module)) : std::nullopt;
}

void writeWrapper(const fs::path& wrapper, const WrapperContents& contents) {
    createDirectories(wrapper); // separately, so that an error names it
    createDirectories(executablesOf(wrapper));
    createDirectories(resourcesOf(wrapper));
    if (contents.runner) {
        replaceRunner(*contents.runner, runnerOf(wrapper));
    }
    if (contents.webHost) {
        replaceWebHost(*contents.webHost, wrapper);
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
