// Interrupts each command that changes clones at every system call that changes the disk, lets each
// of these calls fail once, and prints what became of the clones: fault_trial [STRIDE [OPERATION]].
// With a stride, only every so many of the calls. Exits with 1 if a point did not hold.
#include "LaunchKit/ChangeRecovery.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/MenuEntries.h"
#include "Platform/desktop/MenuEntry.h"
#include "tests/CommandLine/CommandLineHarness.h"
#include "tests/support/AppBundles.h"
#include "tests/support/EveryStep.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <limits>
#include <optional>
#include <set>
#include <sys/mman.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;
using Tree = std::map<std::string, std::string>;

struct Operation {
    std::string name{};
    Words words{};
    bool isResumable =
        false; ///< may stop half-way, as long as it says so and goes on when repeated
};

const std::string runner = runnerProgram();

const std::vector<Operation> operations{
    {"create",
     {"create", "--kind", "web", "--name", "New", "--url", "https://n.test", "--runner", runner}},
    {"create over a clone",
     {"create", "--kind", "web", "--name", "Work", "--url", "https://n.test", "--replace",
      "--label", "N", "--runner", runner}},
    {"edit", {"edit", "Work", "--url", "https://n.test", "--label", "N", "--hide-icon"}},
    {"rename", {"rename", "Work", "Office"}},
    {"rename with data", {"rename", "Work", "Office", "--move-data"}},
    {"refresh", {"refresh", "Work", "--runner", runner}},
    {"migrate", {"migrate", "Work"}, true},
    {"delete", {"delete", "Work", "--yes"}, true},
    {"delete with data", {"delete", "Work", "--including-data", "--yes"}, true},
};

// Text that a killed process leaves behind without a system call.
class SharedText {
public:
    SharedText()
        : text_(static_cast<char*>(
              ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))) {}
    SharedText(const SharedText&) = delete;
    SharedText& operator=(const SharedText&) = delete;
    ~SharedText() { ::munmap(text_, size); }

    void set(const std::string& text) { std::strncpy(text_, text.c_str(), size - 1); }
    [[nodiscard]] std::string get() const { return text_; }

private:
    static constexpr std::size_t size = 65536;
    char* text_;
};

// A home with the clone "Work", another one, and what is somebody else's.
class Trial {
public:
    Trial() {
        runApart({"create", "--kind", "web", "--name", "Work", "--url", "https://w.test", "--icon",
                  QUORVEL_SOURCE_DIR "/docs/images/badges.png", "--label", "W", "--isolate-folders",
                  "--runner", runner});
        runApart({"create", "--kind", "web", "--name", "Other", "--url", "https://o.test",
                  "--runner", runner});
        // Another runner than the one that a refresh brings.
        write(at("Applications/Work.app/Contents/MacOS/runner"), "an older one");
        for (const char* file : {"Downloads/a", "Documents/below/b", "profile/c", "profile/d"}) {
            write(at("QuorvelInstances/Work") / file, file);
        }
        write(at("QuorvelInstances/Other/file"), "other");
        write(at("Downloads/a"), "the user's");
        write(at(".local/share/applications/mine.desktop"), "[Desktop Entry]\n");
        copy(harness_.home.path(), saved_ / "home");
    }

    // Tries one fault at every call, and prints a row.
    bool run(const Operation& operation, const char* name, const Fault& fault, int stride) {
        std::size_t tried = 0;
        std::size_t held = 0;
        const Tree before = treeBefore();
        const Tree after = treeAfter(operation);
        for (int step = 0;; step += stride) {
            restore();
            const FaultOutcome outcome = withFault(step, fault, [&] { perform(operation.words); });
            if (outcome.kill == Kill::notPermitted) {
                throw std::runtime_error("the kernel forbids tracing");
            }
            if (outcome.kill == Kill::ended) {
                break;
            }
            const std::string problem = judge(operation, outcome, fault, before, after);
            ++tried;
            held += problem.empty() ? 1 : 0;
            if (!problem.empty()) {
                std::cerr << operation.name << ", " << name << " at call " << step << ": "
                          << problem << "\n";
            }
        }
        std::cout << "| " << operation.name << " | " << name << " | " << tried << " | " << held
                  << " |\n"
                  << std::flush;
        tried_ += tried;
        held_ += held;
        return tried == held;
    }

    void printSum() const { std::cout << "| all | | " << tried_ << " | " << held_ << " |\n"; }

private:
    [[nodiscard]] fs::path at(const std::string& name) const { return harness_.home / name; }

    // With all dates, which the menu's repair looks at.
    static void copy(const fs::path& from, const fs::path& to) {
        const std::string command = "cp -a '" + from.string() + "' '" + to.string() + "'";
        if (std::system(command.c_str()) != 0) {
            throw std::runtime_error("not copied");
        }
    }

    void restore() const {
        fs::remove_all(harness_.home.path());
        copy(saved_ / "home", harness_.home.path());
    }

    void perform(const Words& words) {
        const CommandResult result = harness_.run(words);
        message_.set(result.errors);
        std::_Exit(result.status);
    }

    // In a process of its own: drawing starts threads, and a process with threads can't be copied.
    int runApart(const Words& words) {
        constexpr int never = std::numeric_limits<int>::max();
        return withFault(never, {}, [&] { perform(words); }).status;
    }

    // Each start of a clone makes these links, so that it does not matter whether they are there.
    static bool isLinkOfStart(const Tree::value_type& item) {
        return item.first.starts_with("QuorvelInstances/Work/") && item.second.starts_with("-> ");
    }

    // Everything but the menu, which is compared by what it shows.
    [[nodiscard]] Tree tree() const {
        Tree tree = treeOf(harness_.home.path());
        std::erase_if(tree, [](const auto& item) {
            return item.first.starts_with(".local") || item.first.starts_with(".cache") ||
                   item.first.ends_with(".quorvel-lock") || isLinkOfStart(item);
        });
        return tree;
    }

    Tree treeBefore() {
        restore();
        return tree();
    }

    Tree treeAfter(const Operation& operation) {
        restore();
        if (runApart(operation.words) != 0) {
            throw std::runtime_error(operation.name + " fails by itself: " + message_.get());
        }
        return tree();
    }

    // What the window does when it opens, two minutes later.
    void startNext() const {
        const auto before = fs::file_time_type::clock::now() - std::chrono::minutes(2);
        for (const auto& item : fs::recursive_directory_iterator(harness_.home.path())) {
            if (item.symlink_status().type() == fs::file_type::regular &&
                item.path().filename().string().starts_with(".quorvel-")) {
                fs::last_write_time(item.path(), before);
            }
        }
        finishInterruptedChanges(InstanceRegistry().searchDirs());
        repairMenu(InstanceRegistry().list());
    }

    // Returns what is wrong; empty if the point holds.
    std::string judge(const Operation& operation, const FaultOutcome& outcome, const Fault& fault,
                      const Tree& before, const Tree& after) {
        const bool wasKilled = fault.error == 0;
        startNext();
        if (const std::string problem = menuProblem(); !problem.empty()) {
            return problem;
        }
        if (read(at("QuorvelInstances/Other/file")) != "other" ||
            read(at("Downloads/a")) != "the user's") {
            return "somebody else's is touched";
        }
        const Tree now = tree();
        const std::string& message = message_.get();
        if (!wasKilled && outcome.status == 0) {
            return now == after ? "" : "it reported success, " + difference(after, now);
        }
        if (!wasKilled && message.empty()) {
            return "it failed without a message";
        }
        if (now == before || (wasKilled && now == after)) {
            return "";
        }
        return operation.isResumable && listsTheClone(before, now)
                   ? resumed(operation, after)
                   : "it is neither old nor new: " + difference(before, now);
    }

    // A clone that can't be found any more can't be deleted again either.
    static bool listsTheClone(const Tree& before, const Tree& now) {
        const std::string config = "Applications/Work.app/Contents/Resources/instance.json";
        return before.contains(config) && now.contains(config);
    }

    std::string resumed(const Operation& operation, const Tree& after) {
        const bool done = runApart(operation.words) == 0;
        return done && tree() == after ? "" : "repeated, it ends with " + message_.get();
    }

    static std::string difference(const Tree& wanted, const Tree& now) {
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

    // The menu must show the clones that there are, and what else was in it.
    [[nodiscard]] std::string menuProblem() const {
        std::multiset<std::string> shown;
        for (const PublishedEntry& published : publishedMenuEntries()) {
            shown.insert(published.entry.name);
        }
        std::multiset<std::string> wanted;
        for (const InstanceRecord& record : InstanceRegistry().list()) {
            wanted.insert(record.config.displayName);
        }
        if (shown != wanted) {
            return "the menu shows other clones";
        }
        if (read(at(".local/share/applications/mine.desktop")) != "[Desktop Entry]\n") {
            return "somebody else's entry is touched";
        }
        for (const auto& item : fs::recursive_directory_iterator(at(".local"))) {
            if (item.path().filename().string().starts_with(".quorvel-")) {
                return item.path().string() + " is left";
            }
        }
        return "";
    }

    CommandLineHarness harness_{};
    TemporaryFolder saved_{};
    SharedText message_{};
    std::size_t tried_ = 0;
    std::size_t held_ = 0;
};

} // namespace
} // namespace quorvel::testing

int main(int argc, char** argv) {
    using namespace quorvel::testing;
    try {
        const int stride = argc > 1 ? std::max(1, std::atoi(argv[1])) : 1;
        const std::string only = argc > 2 ? argv[2] : "";
        Trial trial;
        bool allHeld = true;
        std::cout << "| command | at each call | points tried | points held |\n|---|---|--:|--:|\n";
        for (const Operation& operation : operations) {
            if (!only.empty() && only != operation.name) {
                continue;
            }
            allHeld &= trial.run(operation, "killed", {}, stride);
            allHeld &= trial.run(operation, "ENOSPC", {ENOSPC}, stride);
            allHeld &= trial.run(operation, "EIO", {EIO}, stride);
            allHeld &= trial.run(operation, "EACCES", {EACCES}, stride);
        }
        trial.printSum();
        return allHeld ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 2;
    }
}
