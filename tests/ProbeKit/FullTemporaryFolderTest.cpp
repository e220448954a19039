// Probing with a temporary folder on a file system that is really full.
#include "tests/ProbeKit/Trial.h"
#include "tests/support/PrivateMounts.h"

#include <gtest/gtest.h>
#include <iostream>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;

enum class Outcome { passed, failed, notPermitted };

// Runs `check` in a process of its own whose trial has space for that many files and folders in its
// temporary folder, and none for bytes beyond a page. What `check` says of a failure is printed.
Outcome withRoomFor(int items, const std::function<std::string(Trial&)>& check) {
    const pid_t child = ::fork();
    if (child == 0) {
        Outcome outcome = Outcome::notPermitted;
        if (hasOwnMounts()) {
            Trial trial("com.example.Notes");
            const std::string options = "size=4k,nr_inodes=" + std::to_string(items + 1);
            if (::mount("none", trial.temporary.c_str(), "tmpfs", 0, options.c_str()) == 0) {
                std::string problem;
                try {
                    problem = check(trial);
                } catch (const std::exception& error) {
                    problem = error.what();
                }
                trial.endAll();
                if (problem.empty() && ::waitpid(-1, nullptr, WNOHANG) != -1) {
                    problem = "a process is left";
                }
                std::cerr << problem << (problem.empty() ? "" : "\n");
                outcome = problem.empty() ? Outcome::passed : Outcome::failed;
                ::umount2(trial.temporary.c_str(), MNT_DETACH);
            }
        }
        std::_Exit(static_cast<int>(outcome));
    }
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return Outcome::failed;
    }
    return static_cast<Outcome>(WEXITSTATUS(status));
}

// A home can't be made: the run ends with the system's own error before anything is launched.
std::string expectNoLaunch(Trial& trial) {
    trial.plan(trial.reportStep() + "\nwait\n");
    try {
        (void)trial.run();
        return "the run went on";
    } catch (const PlatformError& error) {
        if (error.code() != std::errc::no_space_on_device) {
            return "another error: " + error.description();
        }
        const std::string text = error.description();
        if (!text.starts_with("“quorvel-probe-") ||
            !text.ends_with("” couldn’t be created: no space left on device")) {
            return "an unclear message: " + text;
        }
    }
    return trial.released.empty() && read(trial.reports).empty() ? "" : "something was launched";
}

#define EXPECT_PASSED(expression)                                                                  \
    do {                                                                                           \
        const Outcome outcome = expression;                                                        \
        if (outcome == Outcome::notPermitted) {                                                    \
            GTEST_SKIP() << "this machine lets nobody mount a file system of his own";             \
        }                                                                                          \
        EXPECT_EQ(outcome, Outcome::passed);                                                       \
    } while (false)

TEST(FullTemporaryFolderTest, WithoutRoomForAHomeNothingIsLaunched) {
    EXPECT_PASSED(withRoomFor(0, expectNoLaunch));
}

TEST(FullTemporaryFolderTest, WithoutRoomForTheSecondHomeNothingIsLaunched) {
    EXPECT_PASSED(withRoomFor(1, expectNoLaunch));
}

TEST(FullTemporaryFolderTest, AnAppThatCanWriteNothingThereStillHasAResult) {
    EXPECT_PASSED(withRoomFor(2, [](Trial& trial) -> std::string {
        const std::filesystem::path leak = trial.library / "Application Support/Notes/leak";
        trial.plan("write ~/note\nwrite " + leak.string() + "\n" + trial.reportStep() + "\nwait\n");
        const ProbeResult result = trial.run();
        if (trial.homes().size() != 2 || !std::filesystem::is_empty(trial.homes()[0])) {
            return "there was space left";
        }
        if (result.count(LeakBucket::captured) != 0) {
            return "something was captured";
        }
        if (result.count(LeakBucket::dataLeak) == 0 ||
            result.recommendedStrategy != Strategy::containerRedirect || !result.complete) {
            return "the leak was missed";
        }
        return trial.released.size() == 2 ? "" : "not both were let go";
    }));
}

TEST(FullTemporaryFolderTest, AnAppThatFillsItHasAResult) {
    EXPECT_PASSED(withRoomFor(8, [](Trial& trial) -> std::string {
        trial.plan("write ~/first\nwrite ~/second\n" + trial.reportStep() + "\nwait\n");
        const ProbeResult result = trial.run();
        if (result.count(LeakBucket::captured) == 0 || !result.complete) {
            return "what was captured is missing";
        }
        return result.recommendedStrategy == Strategy::homeOverride ? "" : "another strategy";
    }));
}

} // namespace
} // namespace quorvel
