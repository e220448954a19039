#include "LaunchKit/MenuTarget.h"

#include "Base/BundleName.h"
#include "LaunchKit/InstanceConfig.h"
#include "Platform/desktop/DesktopEntry.h"
#include "Platform/desktop/ExecLine.h"
#include "Platform/files/PlatformError.h"

#include <algorithm>

namespace quorvel {
namespace {

using Texts = std::vector<std::string>;

std::optional<DesktopEntry> entryOf(const InstanceConfig& config) {
    if (config.kind != ShortcutKind::app || !config.targetAppPath.ends_with(".desktop")) {
        return std::nullopt;
    }
    try {
        return readDesktopEntry(config.targetAppPath);
    } catch (const PlatformError&) {
        return std::nullopt; // the clone may still be made ready for an app that comes back
    }
}

// The code for files or addresses that a command contains; there is at most one.
std::string codeIn(const std::string& exec) {
    try {
        for (const ExecLine::Word& word : ExecLine::parse(exec).words) {
            for (const char* code : {"%U", "%u", "%F", "%f"}) {
                if (word.text == code) {
                    return code;
                }
            }
        }
    } catch (const ExecLineError&) {
        // One that can't be started takes no files either.
    }
    return {};
}

void addOnce(Texts& texts, const std::string& text) {
    if (std::find(texts.begin(), texts.end(), text) == texts.end()) {
        texts.push_back(text);
    }
}

Texts categoriesFor(const InstanceConfig& config, const std::optional<DesktopEntry>& entry) {
    Texts categories = entry ? entry->categories : Texts{};
    if (categories.empty()) {
        const bool isWeb = config.kind == ShortcutKind::web || config.registerAsBrowser;
        categories.emplace_back(isWeb ? "Network" : "Utility");
    }
    if (config.registerAsBrowser) {
        addOnce(categories, "Network");
        addOnce(categories, "WebBrowser");
    }
    return categories;
}

Texts mimeTypesFor(const InstanceConfig& config, const std::optional<DesktopEntry>& entry) {
    Texts types;
    if (config.registerAsBrowser) {
        types = {"x-scheme-handler/http", "x-scheme-handler/https", "text/html",
                 "application/xhtml+xml"};
    }
    if (config.openWithPassthrough && entry) {
        for (const std::string& type : entry->mimeTypes) {
            addOnce(types, type);
        }
    }
    return types;
}

std::string codesFor(const InstanceConfig& config, const std::optional<DesktopEntry>& entry) {
    if (!config.registerAsBrowser && !config.openWithPassthrough) {
        return {};
    }
    const std::string own = entry ? codeIn(entry->exec) : std::string();
    if (!own.empty()) {
        return own;
    }
    return config.registerAsBrowser ? "%U" : "%F";
}

} // namespace

MenuTarget menuTargetOf(const InstanceConfig& config) {
    const std::optional<DesktopEntry> entry = entryOf(config);
    MenuTarget target;
    target.name = entry ? entry->name : bundleFallbackName(config.targetAppURL());
    target.codes = codesFor(config, entry);
    const bool hasWindow = config.kind == ShortcutKind::app || config.kind == ShortcutKind::web;
    target.notifiesOfStart = entry ? entry->startupNotify.value_or(true) : hasWindow;
    target.flatpakId = entry ? entry->flatpakId : std::string();
    target.categories = categoriesFor(config, entry);
    target.mimeTypes = mimeTypesFor(config, entry);
    target.keywords = entry ? entry->keywords : Texts{};
    if (config.kind == ShortcutKind::app && !target.name.empty()) {
        addOnce(target.keywords, target.name);
    }
    return target;
}

} // namespace quorvel
