#include "LaunchKit/Launching/LinkDoorSetup.h"

#include "Base/CloneLayout.h"
#include "Base/PathText.h"
#include "LaunchKit/AppBundle.h"
#include "LaunchKit/CloneOptions.h"
#include "LaunchKit/Launching/HelperProgram.h"
#include "LaunchKit/Launching/LinkOpener.h"
#include "LinkDoor/LinkAddress.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/entries/DefaultApplication.h"
#include "Platform/entries/MimeAppsList.h"
#include "Platform/files/ContainedFolder.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/FolderVariable.h"
#include "Platform/homes/UserPaths.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

constexpr const char* linkDoorName = "quorvel-link-door";
constexpr std::string_view doorEntryId = "quorvel-links.desktop";

std::string typeOf(std::string_view scheme) {
    return std::string("x-scheme-handler/").append(scheme);
}

// Pages in files are not among them: what a clone wrote is opened inside it.
std::vector<std::string> linkTypes() {
    std::vector<std::string> types;
    std::transform(linkSchemes.begin(), linkSchemes.end(), std::back_inserter(types), typeOf);
    return types;
}

std::string folderOf(const Environment& clone, const char* variable, std::string_view otherwise) {
    return folderVariable(clone, variable, joinAsText(valueOf(clone, "HOME"), otherwise));
}

// One home's part in opening links.
class LinkHome {
public:
    LinkHome(const std::string& home, const Environment& clone)
        : home_(home),
          links_(joinAsText(home, linkFolderName)),
          config_(folderOf(clone, "XDG_CONFIG_HOME", ".config")),
          entry_(joinAsText(
              joinAsText(folderOf(clone, "XDG_DATA_HOME", ".local/share"), "applications"),
              doorEntryId)) {
        for (const std::string& list : mimeAppsListNames(valueOf(clone, "XDG_CURRENT_DESKTOP"))) {
            if (list == commonMimeAppsList || itemOrLinkExists(joinAsText(config_, list))) {
                lists_.push_back(list);
            }
        }
    }

    void prepare(const fs::path& door) const {
        const std::string program = joinAsText(programs(), "xdg-open");
        std::error_code code;
        if (fs::read_symlink(program, code) != door) {
            replaceLinkBelow(home_, program, door);
        }
        if (const std::string entry = entryText(door); !entry.empty()) {
            replaceIfOther(entry_, entry);
            editLists([](const std::string& list) {
                return preferringHandler(list, linkTypes(), doorEntryId);
            });
        }
    }

    void takeBack() const {
        editLists([](const std::string& list) { return withoutHandler(list, doorEntryId); });
    }

    // Hides the entry of the same name in the data folder of another clone, which a clone that is
    // started inside that one searches, too.
    void hideOtherDoor() const {
        replaceIfOther(entry_, "[Desktop Entry]\nType=Application\nName=Links\nHidden=true\n");
    }

    void writeSession(const LinkSession& session) const {
        if (readLinkSession(home_) != session) {
            replaceFileBelow(home_, linkSessionFile(home_), session.text());
        }
    }

    [[nodiscard]] std::string programs() const { return joinAsText(links_, "bin"); }

private:
    // Unchanged files keep their dates, which desktops watch.
    void replaceIfOther(const std::string& file, const std::string& text) const {
        constexpr std::size_t limit = 65536;
        if (isSymbolicLink(file) || readFile(file, limit) != text) {
            replaceFileBelow(home_, file, text);
        }
    }

    template<typename Edit>
    void editLists(const Edit& edit) const {
        constexpr std::size_t limit = std::size_t{1} << 20U;
        for (const std::string& name : lists_) {
            const std::string file = joinAsText(config_, name);
            const auto before = readFile(file, limit);
            // A link was made on purpose, and what can't be read would be lost.
            if (isSymbolicLink(file) || (!before && itemExists(file))) {
                continue;
            }
            const std::string after = edit(before.value_or(""));
            if (after != before.value_or("")) {
                replaceFileBelow(home_, file, after);
            }
        }
    }

    static std::string entryText(const fs::path& door) {
        DesktopEntry entry;
        entry.type = "Application";
        entry.name = "Links";
        entry.comment = "Opens links outside of this clone";
        entry.noDisplay = true;
        entry.mimeTypes = linkTypes();
        try {
            entry.tryExec = door.string();
            entry.exec = ExecLine::text({door.string()}, "%u");
            return desktopEntryText(entry);
        } catch (const Error&) {
            return {}; // a path that no entry can hold
        }
    }

    std::string home_;
    std::string links_;
    std::string config_;
    std::string entry_;
    std::vector<std::string> lists_{};
};

// Programs split BROWSER at blanks and colons, and "%s" in it has a meaning.
bool isPlainCommand(std::string_view path) {
    return path.find_first_of(" :%\t\n\"'\\") == std::string_view::npos;
}

void changeEnvironment(const LinkHome& links, const fs::path& door, const std::string& home,
                       const CloneOptions& options, Environment& clone) {
    if (!options.environment.contains("BROWSER")) {
        clone["BROWSER"] = isPlainCommand(door.native()) ? door.string() : "xdg-open";
    }
    const std::string programs = links.programs();
    if (!options.environment.contains("PATH") && programs.find(':') == std::string::npos) {
        const std::string path = valueOf(clone, "PATH");
        clone["PATH"] = programs + ":" + (path.empty() ? "/usr/local/bin:/usr/bin:/bin" : path);
    }
    clone[cloneHomeVariable] = home;
}

// Returns a variable's value outside of a clone; std::nullopt if it had none or it is unknown.
std::optional<std::string> valueOutside(const std::string& cloneHome, const std::string& name) {
    const auto session = readLinkSession(cloneHome);
    if (!session) {
        return std::nullopt;
    }
    const auto before = session->variables.find(name);
    return before == session->variables.end() ? std::nullopt : before->second;
}

// If this clone is started inside another one, the door of that one would lead outside.
void leaveOtherClone(const LinkHome& own, const std::optional<fs::path>& door,
                     const CloneOptions& options, Environment& clone) {
    const std::string other = valueOf(clone, cloneHomeVariable);
    clone.erase(cloneHomeVariable);
    clone.erase(linkHopsVariable);
    if (!other.starts_with('/')) {
        return;
    }
    own.hideOtherDoor();
    if (!options.environment.contains("PATH") && clone.contains("PATH")) {
        clone["PATH"] = withoutFoldersBelow(clone["PATH"], LinkHome(other, clone).programs());
    }
    const fs::path browser = valueOf(clone, "BROWSER");
    // The other clone's door may be that of another installation.
    const bool leadsToDoor =
        browser == "xdg-open" || browser == door || browser.filename() == linkDoorName;
    if (options.environment.contains("BROWSER") || !leadsToDoor) {
        return;
    }
    clone.erase("BROWSER");
    if (const auto before = valueOutside(other, "BROWSER")) {
        clone["BROWSER"] = *before;
    }
}

} // namespace

bool isWebBrowser(const AppBundle& app) {
    if (!app.desktop) {
        return false;
    }
    const auto engine = app.desktop->program.engine;
    const std::vector<std::string>& types = app.desktop->entry.mimeTypes;
    return (engine == ResolvedProgram::Engine::firefox ||
            engine == ResolvedProgram::Engine::chromium) &&
           std::find(types.begin(), types.end(), typeOf(linkSchemes.front())) != types.end();
}

LinkRoute linkRouteOf(const AppBundle& app, const CloneOptions& options, bool systemOpensOutside) {
    const bool staysInside = systemOpensOutside || options.links == linksInside ||
                             options.registerAsBrowser || isWebBrowser(app);
    return staysInside ? LinkRoute::inside : LinkRoute::outside;
}

std::optional<fs::path> linkDoorProgram(const Environment& session) {
    return helperProgram(linkDoorName, "QUORVEL_LINK_DOOR", session);
}

void setUpLinks(const AppBundle& app, const std::string& home, const CloneOptions& options,
                const Environment& session, Environment& clone) {
    if (isSameItem(home, UserPaths::home())) {
        return; // the user's own settings
    }
    try {
        const LinkHome links(home, clone);
        const auto door = linkDoorProgram(session);
        const bool staysInside =
            linkRouteOf(app, options, !linksStayInsideClones()) == LinkRoute::inside;
        if (staysInside) {
            leaveOtherClone(links, door, options, clone);
        }
        if (!door || staysInside) {
            links.takeBack();
            return;
        }
        links.prepare(*door);
        changeEnvironment(links, *door, home, options, clone);
        LinkSession record = LinkSession::between(session, clone);
        record.opener = linkOpenerProgram(options.links);
        links.writeSession(record);
    } catch (const std::exception&) {
        // The application is started without them.
    }
}

} // namespace quorvel
