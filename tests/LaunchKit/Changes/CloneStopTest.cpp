#include "LaunchKit/Changes/CloneStop.h"

#include "LaunchKit/Changes/CloneChange.h"
#include "LaunchKit/Changes/CloneRenaming.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "tests/Runner/RunnerFixture.h"
#include "tests/support/Sanitizer.h"

#include <cstdlib>

namespace quorvel {
namespace {

using namespace testing;
using Case = StoppedClone::Case;
using std::chrono::milliseconds;
namespace fs = std::filesystem;

constexpr milliseconds shortly{300};
const std::string deaf = "trap '' TERM; while :; do sleep 0.02; done";

class CloneStopTest : public ScriptedRunnerFixture {
protected:
    [[nodiscard]] StoppedClone stop(const fs::path& bundle, const StopOptions& options = {}) const {
        const auto record = registry_.record(bundle);
        return stopClone(registry_, record.value(), options);
    }

    [[nodiscard]] static bool isGone(pid_t pid) {
        return !fs::exists("/proc/" + std::to_string(pid) + "/exe");
    }

    [[nodiscard]] std::string deafTarget() const {
        return "echo $$ > " + at("pid").string() + "; " + deaf;
    }

    static bool force(std::size_t /*left*/) { return true; }

    InstanceRegistry registry_{};
};

TEST_F(CloneStopTest, NothingIsDoneIfNothingRuns) {
    const StoppedClone stopped = stop(wrapper(lasting()));
    EXPECT_EQ(stopped.outcome, Case::notRunning);
    EXPECT_EQ(stopped.ended, 0U);
}

TEST_F(CloneStopTest, AskingIsEnoughForATargetThatEndsWell) {
    Process runner = start(wrapper(scripted("trap 'echo asked > " + at("answer").string() +
                                            "; exit 0' TERM; echo $$ > " + at("pid").string() +
                                            "; while :; do sleep 0.02; done")));
    ASSERT_TRUE(targetRuns());
    const StoppedClone stopped = stop(home_ / "Applications/Work.app");
    EXPECT_EQ(stopped.outcome, Case::ended);
    EXPECT_GE(stopped.ended, 2U) << "the runner and its target";
    EXPECT_EQ(stopped.left, 0U);
    EXPECT_EQ(read(at("answer")), "asked\n");
    EXPECT_EQ(runner.waitUntilExit(), 0);
}

TEST_F(CloneStopTest, ACloneThatWasChangedWhileItRunsIsStopped) {
    for (const bool renames : {false, true}) {
        fs::path bundle = wrapper(lasting());
        Process runner = start(bundle);
        ASSERT_TRUE(targetRuns());
        if (renames) {
            bundle = renameClone(bundle, {.name = "Office"}).record.bundleURL;
        } else {
            (void)editClone(bundle, [](CloneSettings& s) { s.config.environment["A"] = "1"; });
        }
        const StoppedClone stopped = stop(bundle);
        EXPECT_EQ(stopped.outcome, Case::ended);
        EXPECT_GE(stopped.ended, 2U) << "the runner and its target";
        EXPECT_LE(stopped.ended, isSanitized ? 3U : 2U) << "and what looks for the runner's leaks";
        EXPECT_TRUE(isGone(numberIn(at("pid"))));
        EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM);
        fs::remove(at("pid"));
    }
}

TEST_F(CloneStopTest, WithoutPermissionATargetThatDoesNotListenGoesOn) {
    const fs::path bundle = wrapper(scripted(deafTarget()));
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    EXPECT_EQ(stop(bundle, {.patience = shortly}).outcome, Case::running);
    std::size_t asked = 0;
    const StoppedClone refused =
        stop(bundle, {.patience = shortly, .mayForce = [&](std::size_t left) {
                          asked = left;
                          return false;
                      }});
    EXPECT_EQ(refused.outcome, Case::running);
    EXPECT_EQ(refused.left, asked);
    EXPECT_GE(asked, 2U);
    EXPECT_TRUE(runner.isRunning());
    EXPECT_FALSE(isGone(numberIn(at("pid"))));
    EXPECT_EQ(stop(bundle, {.patience = shortly, .mayForce = force}).outcome, Case::forced);
    EXPECT_TRUE(isGone(numberIn(at("pid"))));
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGKILL) << "it reported its target's end itself";
}

TEST_F(CloneStopTest, WhatDetachedItselfEndsToo) {
    const fs::path bundle = wrapper(scripted(detached("sleep 600 30>&-") + "; exec sleep 600"));
    Process runner = start(bundle);
    ASSERT_TRUE(childRuns());
    EXPECT_EQ(stop(bundle).outcome, Case::ended);
    EXPECT_TRUE(isGone(numberIn(at("child"))));
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM);
}

TEST_F(CloneStopTest, WhatDetachedItselfAndDoesNotListenIsEndedByForce) {
    write(at("deaf"), deaf);
    const fs::path bundle =
        wrapper(scripted(detached("sh " + at("deaf").string()) + "; exec sleep 600"));
    Process runner = start(bundle);
    ASSERT_TRUE(childRuns());
    constexpr milliseconds untilTheTargetHasListened{2000};
    EXPECT_EQ(stop(bundle, {.patience = untilTheTargetHasListened, .mayForce = force}).outcome,
              Case::forced);
    EXPECT_TRUE(isGone(numberIn(at("child"))));
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM) << "of its target, which had listened";
}

TEST_F(CloneStopTest, WhatAKilledRunnerLeftBehindEnds) {
    const fs::path bundle = wrapper(lasting());
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    runner.sendSignal(SIGKILL);
    runner.waitUntilExit();
    const StoppedClone stopped = stop(bundle);
    EXPECT_EQ(stopped.outcome, Case::ended);
    EXPECT_EQ(stopped.ended, 1U);
    EXPECT_TRUE(isGone(numberIn(at("pid"))));
}

// Nobody can know whose target it was.
TEST_F(CloneStopTest, WhatIsLeftInASharedHomeGoesOn) {
    InstanceConfig config = lasting();
    const fs::path bundle = wrapper(config);
    config.displayName = "Home";
    const fs::path other = wrapper(config);
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    EXPECT_EQ(stop(other, {.patience = shortly, .mayForce = force}).outcome, Case::elsewhere);
    EXPECT_TRUE(runner.isRunning()) << "the other clone's";
    runner.sendSignal(SIGKILL);
    runner.waitUntilExit();
    EXPECT_EQ(stop(bundle, {.patience = shortly, .mayForce = force}).outcome, Case::elsewhere);
    EXPECT_FALSE(isGone(numberIn(at("pid"))));
}

// Such as the browser in which a link was opened.
TEST_F(CloneStopTest, ADetachedProcessWithTheUsersHomeGoesOn) {
    const std::string ofTheUser = std::string("HOME='") + std::getenv("HOME") + "'; export HOME; ";
    const fs::path bundle = wrapper(scripted("(" + ofTheUser + detached("sleep 600 30>&-") +
                                             "); echo $$ > " + at("pid").string() + "; " + deaf));
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    ASSERT_TRUE(childRuns());
    EXPECT_EQ(stop(bundle, {.patience = shortly, .mayForce = force}).outcome, Case::forced);
    runner.waitUntilExit();
    EXPECT_FALSE(isGone(numberIn(at("child"))));
}

TEST_F(CloneStopTest, AProcessThatGetsTheUsersHomeMeanwhileGoesOn) {
    const std::string user = std::string("HOME='") + std::getenv("HOME") + "'";
    write(at("link"), "exec 30>&-; echo $$ > " + at("child").string() + "; sleep 0.2; export " +
                          user + "; exec sleep 600");
    const fs::path bundle = wrapper(scripted("setsid bash " + at("link").string() +
                                             " & echo $$ > " + at("pid").string() + "; " + deaf));
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    ASSERT_TRUE(childRuns());
    constexpr milliseconds untilItHasLeft{1000};
    EXPECT_EQ(stop(bundle, {.patience = untilItHasLeft, .mayForce = force}).outcome, Case::forced);
    runner.waitUntilExit();
    EXPECT_FALSE(isGone(numberIn(at("child"))));
}

// What started it may still be there.
TEST_F(CloneStopTest, AProcessOfTheTargetWithTheUsersHomeGoesOn) {
    const std::string ofTheUser = std::string("HOME='") + std::getenv("HOME") + "' ";
    const std::string child = "exec 30>&-; echo $$ > " + at("child").string() + "; exec sleep 600";
    const fs::path bundle =
        wrapper(scripted(ofTheUser + "setsid bash -c '" + child + "' & echo $$ > " +
                         at("pid").string() + "; while :; do sleep 0.02; done"));
    for (const bool isOrphan : {false, true}) {
        Process runner = start(bundle);
        ASSERT_TRUE(targetRuns());
        ASSERT_TRUE(childRuns());
        if (isOrphan) {
            runner.sendSignal(SIGKILL);
            runner.waitUntilExit();
        }
        EXPECT_EQ(stop(bundle, {.patience = shortly, .mayForce = force}).outcome, Case::ended);
        runner.waitUntilExit();
        const pid_t users = numberIn(at("child"));
        EXPECT_FALSE(isGone(users)) << isOrphan;
        ::kill(users, SIGKILL);
        EXPECT_TRUE(waitUntil([&] { return isGone(users); }));
        fs::remove(at("child"));
        fs::remove(at("pid"));
    }
}

// A command's HOME is the user's.
TEST_F(CloneStopTest, WhatHasTheSameHomeAsWhatStartedItEnds) {
    InstanceConfig config = configOf(ShortcutKind::command);
    config.commandPath = "/bin/sh";
    config.commandArgs = {"-c", "setsid sh -c 'echo $$ > " + at("child").string() +
                                    "; exec sleep 600' & echo $$ > " + at("pid").string() +
                                    "; while :; do sleep 0.02; done"};
    const fs::path bundle = wrapper(config);
    Process runner = start(bundle);
    ASSERT_TRUE(targetRuns());
    ASSERT_TRUE(childRuns());
    const pid_t child = numberIn(at("child"));
    (void)stop(bundle, {.patience = shortly, .mayForce = force});
    runner.waitUntilExit();
    EXPECT_TRUE(isGone(child));
}

} // namespace
} // namespace quorvel
