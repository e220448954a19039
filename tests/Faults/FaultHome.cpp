#include "tests/Faults/FaultHome.h"

#include "LaunchKit/Changes/ChangeRecovery.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/entries/MenuEntry.h"
#include "tests/support/AppBundles.h"
#include "tests/support/EveryStep.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <set>
#include <stdexcept>
#include <sys/mman.h>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

constexpr const char* entryOfMine = ".local/share/applications/mine.desktop";
constexpr const char* pictureOfMine = ".local/share/icons/hicolor/48x48/apps/mine.png";

// With all dates, which the menu's repair looks at.
void copyAll(const fs::path& from, const fs::path& to) {
    const std::string command = "cp -a '" + from.string() + "' '" + to.string() + "'";
    if (std::system(command.c_str()) != 0) {
        throw std::runtime_error("not copied");
    }
}

bool isInMenu(const std::string& path) {
    return path.starts_with(".local/share/applications") || path.starts_with(".local/share/icons");
}

// Each start of a clone makes these links, so that it does not matter whether they are there.
bool isLinkOfStart(const FaultHome::Tree::value_type& item) {
    return item.first.starts_with("QuorvelInstances/Work/") && item.second.starts_with("-> ");
}

} // namespace

SharedText::SharedText()
    : text_(static_cast<char*>(
          ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}

SharedText::~SharedText() {
    ::munmap(text_, size);
}

void SharedText::set(const std::string& text) {
    std::strncpy(text_, text.c_str(), size - 1);
}

FaultHome::FaultHome() {
    const std::string runner = runnerProgram();
    const auto make = [&](Words words) {
        words.insert(words.end(), {"--runner", runner});
        if (apart([&] { return perform(words); }) != 0) {
            throw std::runtime_error("nothing to try: " + message());
        }
    };
    make({"create", "--kind", "web", "--name", "Work", "--url", "https://w.test", "--icon",
          QUORVEL_SOURCE_DIR "/docs/images/badges.png", "--label", "W", "--isolate-folders"});
    make({"create", "--kind", "web", "--name", "Other", "--url", "https://o.test", "--icon",
          QUORVEL_SOURCE_DIR "/docs/images/badges.png"});
    // Another runner than the one that a refresh brings.
    write(at("Applications/Work.app/Contents/MacOS/runner"), "an older one");
    for (const char* file : {"Downloads/a", "Documents/below/b", "profile/c", "profile/d"}) {
        write(at("QuorvelInstances/Work") / file, file);
    }
    write(at("QuorvelInstances/Other/file"), "other");
    write(at("Downloads/a"), "the user's");
    write(at(entryOfMine), "[Desktop Entry]\n");
    write(at(pictureOfMine), "mine");
    write(at("opt/gedit"), "#!/bin/sh\n");
    makeExecutable(at("opt/gedit"));
    write(application(), "[Desktop Entry]\nType=Application\nName=Editor\nExec=" +
                             at("opt/gedit").string() + " %U\n");
    write(at(".config/gedit/accels"), "keys");
    write(at(".config/gedit/deep/er"), "more");
    write(at(".local/share/gedit/plugins/one"), "plugin");
    copyAll(harness_.home.path(), saved_ / "home");
}

fs::path FaultHome::application() const {
    return at("opt/org.gnome.gedit.desktop");
}

void FaultHome::restore() const {
    fs::remove_all(harness_.home.path());
    copyAll(saved_ / "home", harness_.home.path());
}

int FaultHome::perform(const Words& words) {
    const CommandResult result = harness_.run(words);
    message_.set(result.errors);
    return result.status;
}

int FaultHome::perform(const std::function<void()>& change) {
    message_.set("");
    try {
        change();
        return 0;
    } catch (const std::exception& error) {
        message_.set(error.what());
        return 1;
    }
}

int FaultHome::apart(const std::function<int()>& change) {
    constexpr int never = std::numeric_limits<int>::max();
    return withFault(never, {}, [&] { std::_Exit(change()); }).status;
}

void FaultHome::startNext() const {
    const auto before = fs::file_time_type::clock::now() - std::chrono::minutes(2);
    for (const auto& item : fs::recursive_directory_iterator(harness_.home.path())) {
        const std::string name = item.path().filename();
        if (item.symlink_status().type() == fs::file_type::regular &&
            (name.starts_with(".quorvel-") || name.starts_with("Quorvel-")) &&
            item.path().extension() != ".desktop") { // an older one is published again anyway
            fs::last_write_time(item.path(), before);
        }
    }
    finishInterruptedChanges(InstanceRegistry().searchDirs());
    repairMenu(InstanceRegistry().list());
}

FaultHome::Tree FaultHome::clones() const {
    Tree tree = treeOf(harness_.home.path());
    std::erase_if(tree, [](const auto& item) {
        return isInMenu(item.first) || item.first.starts_with(".cache") ||
               item.first.ends_with(".quorvel-lock") || isLinkOfStart(item);
    });
    return tree;
}

FaultHome::Tree FaultHome::menu() const {
    Tree tree = treeOf(harness_.home.path());
    std::erase_if(tree, [](const auto& item) { return !isInMenu(item.first); });
    return tree;
}

std::string FaultHome::othersProblem() const {
    const fs::path saved = saved_ / "home";
    for (const char* file :
         {"QuorvelInstances/Other/file", "Downloads/a", entryOfMine, pictureOfMine,
          "Applications/Other.app/Contents/Resources/instance.json", ".config/gedit/accels",
          ".local/share/gedit/plugins/one"}) {
        if (read(at(file)) != read(saved / file)) {
            return std::string(file) + ", which is somebody else's, is touched";
        }
    }
    return "";
}

// An entry needs its picture, and a picture its entry.
std::string FaultHome::pictureProblem() const {
    std::set<std::string> icons;
    for (const PublishedEntry& published : publishedMenuEntries()) {
        const std::string& icon = published.entry.icon;
        icons.insert(icon);
        if (icon.starts_with("Quorvel-") && !hasMenuPicture(icon, 48)) {
            return "the picture of " + published.entry.name + " is missing";
        }
    }
    for (const auto& [path, content] : menu()) {
        const fs::path file = path;
        if (file.filename().string().starts_with("Quorvel-") && content != "<folder>" &&
            file.extension() != ".desktop" && !icons.contains(file.stem())) {
            return path + " is left";
        }
    }
    return "";
}

std::string FaultHome::menuProblem() const {
    std::multiset<std::string> shown;
    for (const PublishedEntry& published : publishedMenuEntries()) {
        if (!isDamagedWrapper(published.entry.cloneId)) { // which keeps its entry
            shown.insert(published.entry.name);
        }
    }
    std::multiset<std::string> wanted;
    for (const InstanceRecord& record : InstanceRegistry().list()) {
        wanted.insert(record.config.displayName);
    }
    if (shown != wanted) {
        return "the menu shows other clones";
    }
    for (const auto& item : fs::recursive_directory_iterator(at(".local"))) {
        if (item.path().filename().string().starts_with(".quorvel-")) {
            return item.path().string() + " is left";
        }
    }
    return pictureProblem();
}

std::string FaultHome::difference(const Tree& wanted, const Tree& now) {
    for (const auto& [path, content] : now) {
        const auto old = wanted.find(path);
        if (old == wanted.end() || old->second != content) {
            return path + (old == wanted.end() ? " is there" : " differs");
        }
    }
    for (const auto& [path, content] : wanted) {
        if (!now.contains(path)) {
            return path + " is missing";
        }
    }
    return "nothing differs";
}

} // namespace quorvel::testing
