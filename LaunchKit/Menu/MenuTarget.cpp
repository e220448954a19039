#include "LaunchKit/Menu/MenuTarget.h"

#include "Base/BundleName.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Targets/DesktopTarget.h"
#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/ExecLine.h"
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
        return std::nullopt; // the app may come back, so the clone gets an entry all the same
    }
}

// Returns the code for files or addresses in a command, which has at most one, in the form for
// several: a desktop would otherwise start the clone several times at once.
std::string codeIn(const std::string& exec) {
    try {
        for (const ExecLine::Word& word : ExecLine::parse(exec).words) {
            if (word.text == "%U" || word.text == "%u") {
                return "%U";
            }
            if (word.text == "%F" || word.text == "%f") {
                return "%F";
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
        types = {"x-scheme-handler/http", "x-scheme-handler/https"};
        // The window of a site opens no local files.
        if (config.kind != ShortcutKind::web) {
            types.insert(types.end(), {"text/html", "application/xhtml+xml"});
        }
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
    std::string own = entry ? codeIn(entry->exec) : std::string();
    // A browser is given addresses, which a code for files would drop.
    if (config.registerAsBrowser && own == "%F") {
        return "%U";
    }
    if (!own.empty()) {
        return own;
    }
    return config.registerAsBrowser ? "%U" : "%F";
}

std::vector<DesktopAction> actionsOf(const DesktopEntry& entry) {
    std::vector<DesktopAction> actions;
    try {
        const ExecLine main = ExecLine::parse(entry.exec);
        for (const DesktopAction& action : entry.actions) {
            if (actionWords(main, action)) {
                actions.push_back(action);
            }
        }
    } catch (const ExecLineError&) {
        // An entry that can't be started has no actions either.
    }
    return actions;
}

// Whether the name of an entry's file may contain the id, which comes from an untrusted file.
bool isFileNamePart(const std::string& id) {
    constexpr std::size_t longest = 200;
    return !id.starts_with('.') && id.size() <= longest &&
           id.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"
                                "0123456789._-") == std::string::npos;
}

} // namespace

MenuTarget menuTargetOf(const InstanceConfig& config) {
    const std::optional<DesktopEntry> entry = entryOf(config);
    MenuTarget target;
    target.name = entry ? entry->name : bundleFallbackName(config.targetAppURL());
    target.codes = codesFor(config, entry);
    const bool hasWindow = config.kind == ShortcutKind::app || config.kind == ShortcutKind::web;
    target.notifiesOfStart = entry ? entry->startupNotify.value_or(true) : hasWindow;
    target.flatpakId = entry && isFileNamePart(entry->flatpakId) ? entry->flatpakId : "";
    target.categories = categoriesFor(config, entry);
    target.mimeTypes = mimeTypesFor(config, entry);
    target.keywords = entry ? entry->keywords : Texts{};
    if (config.kind == ShortcutKind::app && !target.name.empty()) {
        addOnce(target.keywords, target.name);
    }
    target.actions = entry ? actionsOf(*entry) : std::vector<DesktopAction>{};
    return target;
}

} // namespace quorvel
