#include "Base/Utf8.h"
#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/KeyFile_linux.h"

#include <algorithm>
#include <set>

namespace quorvel {
namespace {

const std::string mainGroup = "Desktop Entry";

std::string actionGroup(const std::string& id) {
    return "Desktop Action " + id;
}

// One list drives reading and writing.
struct TextField {
    const char* key;
    std::string DesktopEntry::*field;
    bool isTranslated = false;
    bool isPath = false;
};
constexpr TextField textFields[] = {
    {"Type", &DesktopEntry::type},
    {"Name", &DesktopEntry::name, true},
    {"Comment", &DesktopEntry::comment, true},
    {"Exec", &DesktopEntry::exec, false, true},
    {"TryExec", &DesktopEntry::tryExec, false, true},
    {"Icon", &DesktopEntry::icon, true, true},
    {"Path", &DesktopEntry::path, false, true},
    {"StartupWMClass", &DesktopEntry::startupWmClass},
    {"X-Flatpak", &DesktopEntry::flatpakId},
    {"X-SnapInstanceName", &DesktopEntry::snapInstance},
    {"X-Quorvel-Clone", &DesktopEntry::cloneId},
};

struct FlagField {
    const char* key;
    bool DesktopEntry::*field;
};
constexpr FlagField flagFields[] = {
    {"Terminal", &DesktopEntry::terminal},
    {"Hidden", &DesktopEntry::hidden},
    {"NoDisplay", &DesktopEntry::noDisplay},
    {"DBusActivatable", &DesktopEntry::dbusActivatable},
};

struct ListField {
    const char* key;
    std::vector<std::string> DesktopEntry::*field;
    bool isTranslated = false;
};
constexpr ListField listFields[] = {
    {"Categories", &DesktopEntry::categories},   {"MimeType", &DesktopEntry::mimeTypes},
    {"Keywords", &DesktopEntry::keywords, true}, {"OnlyShowIn", &DesktopEntry::onlyShowIn},
    {"NotShowIn", &DesktopEntry::notShowIn},
};

struct ActionField {
    const char* key;
    std::string DesktopAction::*field;
    bool isTranslated = false;
    bool isPath = false;
};
constexpr ActionField actionFields[] = {
    {"Name", &DesktopAction::name, true},
    {"Icon", &DesktopAction::icon, true, true},
    {"Exec", &DesktopAction::exec, false, true},
};

bool isActionId(const std::string& id) {
    constexpr const char* allowed =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-";
    return !id.empty() && id.find_first_not_of(allowed) == std::string::npos;
}

template<typename Record, typename Fields>
void readTexts(const KeyFile& file, const std::string& group, const Fields& fields,
               Record& record) {
    for (const auto& [key, field, isTranslated, isPath] : fields) {
        record.*field = isTranslated ? file.translated(group, key) : file.text(group, key);
    }
}

std::vector<DesktopAction> actionsIn(const KeyFile& file) {
    std::vector<DesktopAction> actions;
    std::set<std::string> seen;
    for (const std::string& id : file.list(mainGroup, "Actions")) {
        if (actions.size() == DesktopEntry::maxActions) {
            break;
        }
        if (!isActionId(id) || !seen.insert(id).second) {
            continue;
        }
        DesktopAction action{id};
        readTexts(file, actionGroup(id), actionFields, action);
        if (!action.name.empty()) {
            actions.push_back(std::move(action));
        }
    }
    return actions;
}

void check(const std::string& key, const std::string& value, bool isPath) {
    if (value.find('\0') != std::string::npos) {
        throw DesktopEntryError("its “" + key + "” contains a NUL byte");
    }
    if (!isUtf8(value)) {
        throw DesktopEntryError("its “" + key + "” is not UTF-8");
    }
    if (isPath && value.find_first_of("\r\n") != std::string::npos) {
        throw DesktopEntryError("its “" + key + "” contains a line break");
    }
}

template<typename Record, typename Fields>
void writeTexts(KeyFile& file, const std::string& group, const Fields& fields,
                const Record& record) {
    for (const auto& [key, field, isTranslated, isPath] : fields) {
        const std::string& value = record.*field;
        check(key, value, isPath);
        if (!value.empty()) {
            file.set(group, key, value);
        }
    }
}

void writeList(KeyFile& file, const char* key, const std::vector<std::string>& values) {
    for (const std::string& value : values) {
        check(key, value, false);
    }
    if (!values.empty()) {
        file.set(mainGroup, key, values);
    }
}

void writeActions(KeyFile& file, const std::vector<DesktopAction>& actions) {
    std::vector<std::string> ids;
    for (const DesktopAction& action : actions) {
        if (!isActionId(action.id)) {
            throw DesktopEntryError("an action’s id contains other characters than letters, "
                                    "digits and hyphens");
        }
        ids.push_back(action.id);
    }
    writeList(file, "Actions", ids);
    for (const DesktopAction& action : actions) {
        writeTexts(file, actionGroup(action.id), actionFields, action);
    }
}

} // namespace

std::vector<std::string> desktopEntryLanguages() {
    return userLanguages();
}

DesktopEntry parseDesktopEntry(std::string_view text, const std::vector<std::string>& languages) {
    const auto file = KeyFile::parse(text, languages);
    if (!file) {
        throw DesktopEntryError("it is not in the form of a desktop entry");
    }
    if (!file->hasGroup(mainGroup)) {
        throw DesktopEntryError("there is no group “Desktop Entry”");
    }
    DesktopEntry entry;
    readTexts(*file, mainGroup, textFields, entry);
    for (const auto& [key, field] : flagFields) {
        entry.*field = file->boolean(mainGroup, key);
    }
    if (file->has(mainGroup, "StartupNotify")) {
        entry.startupNotify = file->boolean(mainGroup, "StartupNotify");
    }
    for (const auto& [key, field, isTranslated] : listFields) {
        entry.*field =
            isTranslated ? file->translatedList(mainGroup, key) : file->list(mainGroup, key);
    }
    entry.actions = actionsIn(*file);
    return entry;
}

std::string desktopEntryText(const DesktopEntry& entry) {
    KeyFile file;
    writeTexts(file, mainGroup, textFields, entry);
    for (const auto& [key, field] : flagFields) {
        if (entry.*field) {
            file.set(mainGroup, key, true);
        }
    }
    if (entry.startupNotify) {
        file.set(mainGroup, "StartupNotify", *entry.startupNotify);
    }
    for (const auto& [key, field, isTranslated] : listFields) {
        writeList(file, key, entry.*field);
    }
    writeActions(file, entry.actions);
    std::string text = file.text();
    // The form loses some texts, such as those that begin with unusual white space.
    if (parseDesktopEntry(text, {}) != entry) {
        throw DesktopEntryError("not all of it can be written");
    }
    return text;
}

} // namespace quorvel
