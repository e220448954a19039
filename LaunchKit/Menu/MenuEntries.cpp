#include "LaunchKit/Menu/MenuEntries.h"

#include "Base/BundleLayout.h"
#include "Base/StableHash.h"
#include "Base/TerminalText.h"
#include "Base/Text.h"
#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Icons/MenuPictures.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Launching/WindowWord.h"
#include "LaunchKit/Menu/MenuTarget.h"
#include "LaunchKit/Targets/AppIcon.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/entries/ExecLine.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <iterator>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr std::size_t largestDrawing = std::size_t{4} << 20U;

// Menus show any text, so control characters must not be able to disguise it.
std::string shownText(const std::string& text) {
    return Text::trimmingWhitespaceAndNewlines(withoutControls(text));
}

// Returns a name that changes with the picture, without reading it.
std::string pictureName(const std::string& word, const fs::path& icon) {
    std::error_code code;
    const std::uintmax_t size = fs::file_size(icon, code);
    if (code) {
        return {};
    }
    const auto written = std::chrono::duration_cast<std::chrono::nanoseconds>(
        fs::last_write_time(icon, code).time_since_epoch());
    const std::string state =
        std::to_string(size) + " " + std::to_string(std::int64_t{written.count()});
    return word + "-" + stableHash(state);
}

std::string commentFor(const InstanceConfig& config, const MenuTarget& target) {
    switch (config.kind) {
    case ShortcutKind::app:
        return "Clone of " + target.name;
    case ShortcutKind::web:
        return "Opens " + config.url.value_or("");
    case ShortcutKind::file:
        return "Opens " + config.openPath.value_or("");
    case ShortcutKind::command:
        break;
    }
    return "Runs " + config.commandPath.value_or("");
}

// Names that every icon theme has.
std::string genericIcon(ShortcutKind kind) {
    switch (kind) {
    case ShortcutKind::app:
        return "application-x-executable";
    case ShortcutKind::web:
        return "web-browser";
    case ShortcutKind::file:
        return "text-x-generic";
    case ShortcutKind::command:
        break;
    }
    return "utilities-terminal";
}

// GIO looks for a program under its name as written, so a name with "%%" in it isn't found.
std::string execOf(std::vector<std::string> command, const std::string& codes) {
    std::string exec = ExecLine::text(command, codes);
    if (command.front().find('%') == std::string::npos) {
        return exec;
    }
    command.insert(command.begin(), "/usr/bin/env");
    return ExecLine::text(command, codes);
}

DesktopEntry entryFor(const InstanceRecord& record, const MenuTarget& target,
                      const std::string& identity) {
    const InstanceConfig& config = record.config;
    const std::string word = windowWord(identity);
    const std::string runner = runnerOf(identity);
    DesktopEntry entry;
    entry.type = "Application";
    entry.name = shownText(config.displayName);
    if (entry.name.empty()) {
        entry.name = word;
    }
    entry.comment = shownText(commentFor(config, target));
    entry.exec = execOf({runner}, target.codes);
    entry.tryExec = runner;
    entry.icon = pictureName(word, iconOf(identity));
    if (entry.icon.empty()) {
        entry.icon = genericIcon(config.kind);
    }
    entry.startupWmClass = word;
    entry.startupNotify = target.notifiesOfStart;
    entry.categories = target.categories;
    entry.mimeTypes = target.mimeTypes;
    for (const std::string& keyword : target.keywords) {
        if (std::string shown = shownText(keyword); !shown.empty()) {
            entry.keywords.push_back(std::move(shown));
        }
    }
    entry.cloneId = identity;
    for (DesktopAction action : target.actions) {
        action.name = shownText(action.name);
        if (action.name.empty()) {
            continue;
        }
        if (action.icon.find_first_of("\r\n") != std::string::npos) {
            action.icon.clear();
        }
        action.exec = execOf({runner, std::string(actionOption) + action.id}, "");
        entry.actions.push_back(std::move(action));
    }
    return entry;
}

// GNOME matches a sandboxed app's windows only to entries whose id begins with the app's.
std::string fileName(const MenuTarget& target, const std::string& identity) {
    return (target.flatpakId.empty() ? windowWord(identity)
                                     : target.flatpakId + ".quorvel-" + stableHash(identity)) +
           ".desktop";
}

bool needsSymbolicPicture(const InstanceConfig& config) {
    return config.menuBarIcon && config.menuBarIconTemplate;
}

// The name says that there is a drawing, too, so that one that is missing is noticed.
std::string drawnIconName(const std::string& icon) {
    return icon + "-drawn";
}

// The name says which pictures they are, so that those that are there are the right ones.
bool hasPictures(const std::string& icon, const InstanceConfig& config, bool isDrawn) {
    return std::all_of(menuPictureSides.begin(), menuPictureSides.end(),
                       [&](int side) { return hasMenuPicture(icon, side); }) &&
           (!needsSymbolicPicture(config) || hasMenuPicture(icon, MenuPicture::symbolic)) &&
           (!isDrawn || hasMenuPicture(icon, 0));
}

// Whether the published icon is one that the user chose, or the right one.
bool showsRight(const DesktopEntry& published, const MenuEntry& wanted,
                const InstanceConfig& config) {
    const std::string& icon = published.icon;
    const bool isDrawn = icon == drawnIconName(wanted.entry.icon);
    return !icon.starts_with(wanted.word + "-") ||
           ((isDrawn || icon == wanted.entry.icon) && hasPictures(icon, config, isDrawn));
}

// Whether the clone was made again after its entry was published.
bool isOlderThanWrapper(const PublishedEntry& published) {
    std::error_code code;
    const fs::file_time_type made = fs::last_write_time(infoPlistOf(published.entry.cloneId), code);
    return !code && published.written < made;
}

bool isRight(const PublishedEntry& published, const MenuEntry& wanted,
             const InstanceConfig& config) {
    return published.fileName == wanted.fileName && published.entry.exec == wanted.entry.exec &&
           published.entry.tryExec == wanted.entry.tryExec &&
           showsRight(published.entry, wanted, config) && !isOlderThanWrapper(published);
}

// Not the same as unreadable: what the user might still repair or mount again stays published. So
// does a clone elsewhere, whose folder may be an empty mount point.
bool isGone(const std::string& identity) {
    return fs::path(identity).parent_path() == cloneIdentity(userApplicationsFolder()) &&
           itemExists(fs::path(identity).parent_path()) && !itemOrLinkExists(configOf(identity)) &&
           !itemOrLinkExists(runnerOf(identity));
}

void withdrawOrphans(const PublishedMenu& published, MenuRepair& repair) {
    const PublishedMenu::Entries& entries = published.entries();
    for (auto entry = entries.begin(); entry != entries.end();
         entry = entries.upper_bound(entry->first)) {
        if (isGone(entry->first)) {
            withdrawFromMenu(entry->first);
            ++repair.withdrawn;
        }
    }
}

// Returns the application's drawing if the clone's icon is made from it.
std::optional<fs::path> drawingOf(const InstanceRecord& record) {
    const InstanceConfig& config = record.config;
    if (config.kind != ShortcutKind::app || config.iconLabel) {
        return std::nullopt;
    }
    const auto drawing = appIconFile(config.targetAppURL());
    if (!drawing || drawing->extension() != ".svg") {
        return std::nullopt;
    }
    try {
        const auto icon = readFile(iconOf(record.bundleURL), largestDrawing);
        return icon && *icon == IconComposer::converted(*drawing, std::nullopt) ? drawing
                                                                                : std::nullopt;
    } catch (const IconComposer::ComposeError&) {
        return std::nullopt;
    }
}

void publishUnlessRight(const InstanceRecord& record, PublishedMenu& menu, MenuRepair& repair) {
    const MenuEntry wanted = menuEntryOf(record);
    const std::vector<PublishedEntry> published = menu.of(wanted.entry.cloneId);
    // Nothing is drawn unless something is wrong.
    if (published.size() != 1 || !isRight(published.front(), wanted, record.config)) {
        publishInMenu(record, drawingOf(record), menu);
        ++repair.published;
    }
}

// The words are made from the identities, since the user may have edited everything else.
std::map<std::string, std::string> iconsByWord(const PublishedMenu& published) {
    std::map<std::string, std::string> icons;
    for (const auto& [identity, each] : published.entries()) {
        icons.insert_or_assign(windowWord(identity), each.entry.icon);
    }
    return icons;
}

template<typename Work>
void collectingProblems(MenuRepair& repair, const Work& work) {
    try {
        work();
    } catch (const std::exception& error) {
        repair.problems.emplace_back(error.what());
    }
}

} // namespace

MenuEntry menuEntryOf(const InstanceRecord& record) {
    const std::string identity = cloneIdentity(record.bundleURL);
    const MenuTarget target = menuTargetOf(record.config);
    return {windowWord(identity), fileName(target, identity), entryFor(record, target, identity)};
}

PublishedMenu::PublishedMenu() {
    for (PublishedEntry& entry : publishedMenuEntries()) {
        std::string identity = entry.entry.cloneId;
        entries_.emplace(std::move(identity), std::move(entry));
    }
}

PublishedMenu::~PublishedMenu() {
    if (haveTypesChanged_) {
        updateMenuTypes();
    }
}

std::vector<PublishedEntry> PublishedMenu::of(const std::string& identity) const {
    std::vector<PublishedEntry> found;
    const auto [first, last] = entries_.equal_range(identity);
    std::transform(first, last, std::back_inserter(found),
                   [](const Entries::value_type& entry) { return entry.second; });
    return found;
}

void PublishedMenu::publish(const MenuEntry& entry, const std::vector<MenuPicture>& pictures) {
    if (publishMenuEntry(entry, pictures, of(entry.entry.cloneId))) {
        haveTypesChanged_ = true;
    }
}

void publishInMenu(const InstanceRecord& record, const std::optional<fs::path>& drawing) {
    if (hasMenu()) {
        PublishedMenu published;
        publishInMenu(record, drawing, published);
    }
}

void publishInMenu(const InstanceRecord& record, const std::optional<fs::path>& drawing,
                   PublishedMenu& published) {
    if (!hasMenu()) {
        return;
    }
    MenuEntry entry = menuEntryOf(record);
    std::optional<std::string> drawn =
        drawing ? readFile(drawing->native(), largestDrawing) : std::nullopt;
    if (drawn) {
        entry.entry.icon = drawnIconName(entry.entry.icon);
    }
    if (hasPictures(entry.entry.icon, record.config, drawn.has_value())) {
        published.publish(entry, {});
        return;
    }
    std::vector<MenuPicture> pictures =
        menuPictures(iconOf(entry.entry.cloneId), needsSymbolicPicture(record.config));
    if (pictures.empty()) {
        entry.entry.icon = genericIcon(record.config.kind);
    } else if (drawn) {
        pictures.push_back({0, std::move(*drawn)});
    }
    published.publish(entry, pictures);
}

void publishInMenu(const InstanceRecord& record) {
    publishInMenu(record, hasMenu() ? drawingOf(record) : std::nullopt);
}

void withdrawFromMenu(const std::string& identity) {
    withdrawMenuEntry(identity, windowWord(identity));
}

MenuRepair repairMenu(const std::vector<InstanceRecord>& records) {
    MenuRepair repair;
    if (!hasMenu()) {
        return repair;
    }
    removeMenuLeftovers();
    PublishedMenu published;
    removeOldMenuPictures(iconsByWord(published));
    collectingProblems(repair, [&] { withdrawOrphans(published, repair); });
    for (const InstanceRecord& record : records) {
        collectingProblems(repair, [&] { publishUnlessRight(record, published, repair); });
    }
    return repair;
}

} // namespace quorvel
