#include "tests/Faults/MenuFaults.h"

#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Launching/WindowWord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "Platform/entries/MenuEntry.h"

#include <chrono>
#include <memory>
#include <stdexcept>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using Tree = FaultHome::Tree;

// What is done to the entry of "Work", and what of the menu's files it concerns.
struct MenuChange {
    std::string name{};
    std::function<void()> prepare{}; ///< in a home that was restored
    std::function<void()> change{};
};

struct MenuEnds {
    Tree before{};
    Tree after{};
};

std::string contentOf(const Tree& tree, const std::string& path) {
    const auto found = tree.find(path);
    return found == tree.end() ? "" : found->second;
}

// At any moment, a desktop must find the old entry or the new one with all its pictures, and what
// else was in the menu.
std::string readersProblem(const FaultHome& home, const MenuEnds& ends) {
    const Tree now = home.menu();
    for (const auto& [path, content] : now) {
        const std::string name = fs::path(path).filename();
        if (!name.starts_with(".quorvel-") && content != "<folder>" &&
            content != contentOf(ends.before, path) && content != contentOf(ends.after, path)) {
            return path + " is neither old nor new";
        }
    }
    for (const auto& [path, content] : ends.before) {
        if (contentOf(ends.after, path) == content && contentOf(now, path) != content) {
            return path + " is gone";
        }
    }
    return "";
}

std::string picturesProblem(const MenuEnds& ends) {
    const std::string icons = ".local/share/icons/hicolor/";
    for (const PublishedEntry& published : publishedMenuEntries()) {
        for (const int side : {48, 128, 256}) {
            const std::string size = std::to_string(side);
            const std::string file =
                icons + size + "x" + size + "/apps/" + published.entry.icon + ".png";
            const bool isWanted = ends.before.contains(file) || ends.after.contains(file);
            if (isWanted && !hasMenuPicture(published.entry.icon, side)) {
                return "the entry of " + published.entry.name + " is there without " + file;
            }
        }
    }
    return "";
}

std::string judge(const FaultHome& home, const MenuEnds& ends, const FaultOutcome& outcome,
                  bool wasKilled) {
    const bool isWithdrawal = !fs::exists(home.at("Applications/Work.app"));
    if (std::string problem = readersProblem(home, ends); !problem.empty()) {
        return problem;
    }
    // An entry whose clone is gone is not shown, with or without pictures.
    if (std::string problem = picturesProblem(ends); !isWithdrawal && !problem.empty()) {
        return problem;
    }
    const Tree now = home.menu();
    const std::string entry = ".local/share/applications/" +
                              windowWord(cloneIdentity(home.at("Applications/Work.app"))) +
                              ".desktop";
    if (!wasKilled && outcome.status == 0 &&
        contentOf(now, entry) != contentOf(ends.after, entry)) {
        return "it reported success, but the entry is the old one";
    }
    if (!wasKilled && outcome.status != 0 &&
        (home.message().empty() || contentOf(now, entry) != contentOf(ends.before, entry))) {
        return "it reported a failure, but the entry is the new one, or it said nothing";
    }
    home.startNext();
    const std::string problem = home.othersProblem();
    return problem.empty() && home.menu() != ends.after
               ? "the next start leaves it: " + FaultHome::difference(ends.after, home.menu())
               : problem;
}

MenuEnds endsOf(FaultHome& home, const MenuChange& change) {
    MenuEnds ends{.before = home.menu()};
    if (FaultHome::apart([&] { return home.perform(change.change); }) != 0) {
        throw std::runtime_error(change.name + " fails by itself: " + home.message());
    }
    ends.after = home.menu();
    return ends;
}

std::vector<MenuChange> menuChanges(const FaultHome& home) {
    const fs::path wrapper = home.at("Applications/Work.app");
    return {
        {.name = "publish an entry",
         .prepare =
             [wrapper] {
                 // By its date, it is another picture.
                 fs::last_write_time(wrapper / "Contents/Resources/AppIcon.icns",
                                     fs::file_time_type() + std::chrono::hours(1));
             },
         .change = [wrapper] { publishInMenu(InstanceRegistry().record(wrapper).value()); }},
        {.name = "withdraw an entry",
         .prepare = [wrapper] { fs::remove_all(wrapper); },
         .change = [identity = cloneIdentity(wrapper)] { withdrawFromMenu(identity); }},
    };
}

} // namespace

std::vector<FaultCase> menuFaults(FaultHome& home) {
    std::vector<FaultCase> cases;
    for (const MenuChange& change : menuChanges(home)) {
        const auto ends = std::make_shared<MenuEnds>(); // known when it is first prepared
        cases.push_back({.name = change.name,
                         .prepare =
                             [&home, change, ends] {
                                 home.restore();
                                 change.prepare();
                                 if (ends->after.empty()) {
                                     *ends = endsOf(home, change);
                                     home.restore();
                                     change.prepare();
                                 }
                             },
                         .change = [&home, change] { return home.perform(change.change); },
                         .judge =
                             [&home, ends](const FaultOutcome& outcome, bool wasKilled) {
                                 return judge(home, *ends, outcome, wasKilled);
                             }});
    }
    return cases;
}

} // namespace quorvel::testing
