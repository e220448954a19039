#include "tests/ProbeKit/Trial.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::SizeIs;
namespace fs = std::filesystem;

bool isGone(pid_t pid) {
    return ::kill(pid, 0) != 0 && errno == ESRCH;
}

TEST(TrialEndTest, AnAppThatIgnoresTerminationIsEndedByForce) {
    Trial trial;
    trial.plan("ignore-termination\n" + trial.reportStep() + "\nwait\n");
    EXPECT_EQ(trial.run().singleton, SingletonTier::none);
    ASSERT_THAT(trial.released, SizeIs(2));
    const pid_t first = trial.released[0].process.identifier();
    const pid_t second = trial.released[1].process.identifier();
    terminateInBackground(std::move(trial.released[0]), std::chrono::milliseconds(50));
    terminateInBackground(std::move(trial.released[1]), std::chrono::milliseconds(50));
    trial.released.clear();
    EXPECT_TRUE(waitUntil([&] { return isGone(first) && isGone(second); }));
}

// A script that starts another one, in a session of its own, which reports its pid and what it
// was asked; it ends when asked, or does not.
std::string scriptWithDaemon(const Trial& trial, const std::string& start, bool obedient) {
    const std::string number = (trial.folder / "daemons").string();
    const std::string asked = (trial.folder / "asked").string();
    write(trial.folder / "daemon", "trap 'echo asked >> " + asked + (obedient ? "; exit" : "") +
                                       "' TERM; echo $$ >> " + number +
                                       "; while :; do sleep 0.05; done");
    return start + " /bin/sh " + (trial.folder / "daemon").string() +
           " </dev/null >/dev/null 2>&1 & echo reported >> " + trial.reports.string() +
           "; exec sleep 600";
}

std::vector<pid_t> daemonsOf(const Trial& trial) {
    std::vector<pid_t> daemons;
    std::ifstream numbers(trial.folder / "daemons");
    for (pid_t number = 0; numbers >> number;) {
        daemons.push_back(number);
    }
    return daemons;
}

// Runs the trial of such an app and ends it; returns how often its daemons were asked to end.
std::size_t askedDaemons(const std::string& start, bool obedient) {
    Trial trial;
    makeScriptedAppBundle(trial.app, scriptWithDaemon(trial, start, obedient));
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ++trial.sleeps;
        EXPECT_TRUE(waitUntil(
            [&] { return daemonsOf(trial).size() == static_cast<std::size_t>(trial.sleeps); }));
    };
    (void)trial.run();
    terminateAndWait(std::exchange(trial.released, {}), std::chrono::milliseconds(300));
    for (const pid_t daemon : daemonsOf(trial)) {
        EXPECT_TRUE(waitUntil([&] { return isGone(daemon); }, std::chrono::seconds(5)))
            << daemon << " is left of: " << start;
        ::kill(daemon, SIGKILL);
    }
    const std::string asked = read(trial.folder / "asked");
    return static_cast<std::size_t>(std::count(asked.begin(), asked.end(), '\n'));
}

TEST(TrialEndTest, ProcessesLeftByAnAppAreAskedToEnd) {
    EXPECT_EQ(askedDaemons("", true), 2U) << "children";
    EXPECT_EQ(askedDaemons("setsid -f", true), 2U) << "without a parent, in sessions of their own";
    EXPECT_EQ(askedDaemons("env -i HOME=/ /usr/bin/setsid", true), 2U) << "of another home";
}

TEST(TrialEndTest, AnAppWhoseLeftoversIgnoreTheRequestHasThemEndedByForce) {
    EXPECT_EQ(askedDaemons("setsid -f", false), 2U);
}

TEST(TrialEndTest, AnAppIsAskedToEndFirstAndItsLastWritesAreRecorded) {
    Trial trial;
    makeScriptedAppBundle(trial.app,
                          "trap 'echo > \"$HOME/last words\"; exit' TERM; echo reported >> " +
                              trial.reports.string() + "; while :; do sleep 0.05; done");
    AppProber::Options options = trial.options();
    std::vector<std::string> homes;
    options.release = [&](TrialProcess ended) {
        homes.push_back(ended.home);
        EXPECT_TRUE(waitUntil([&] { return fs::exists(fs::path(ended.home) / "last words"); }));
        // Two homes there are, and the second app has not been asked before the first.
        const auto all = trial.homes();
        EXPECT_EQ(
            std::count_if(all.begin(), all.end(),
                          [](const fs::path& home) { return fs::exists(home / "last words"); }),
            static_cast<std::ptrdiff_t>(homes.size()));
        trial.released.push_back(std::move(ended));
    };
    const ProbeResult result = trial.prober().run(options);
    ASSERT_THAT(homes, SizeIs(2));
    EXPECT_THAT(bucketPaths(result, LeakBucket::captured), Contains(homes[0] + "/last words"));
}

TEST(TrialEndTest, AnAppThatVanishesBeforeItsSecondLaunchRunsOn) {
    Trial trial;
    trial.plan("fork " + (trial.folder / "c").string() + "\n");
    makeScriptedAppBundle(trial.app,
                          "echo $$ > '" + (trial.folder / "first").string() + "'; exec sleep 600");
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ASSERT_TRUE(waitUntil([&] { return !read(trial.folder / "first").empty(); }));
        fs::remove(trial.app / "Contents/MacOS/Notes");
    };
    EXPECT_THROW((void)trial.run(), PlatformError);
    EXPECT_THAT(trial.released, IsEmpty());
    const pid_t first = std::stoi(read(trial.folder / "first"));
    EXPECT_EQ(::kill(first, 0), 0);
    ::kill(first, SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return isGone(first); }));
}

TEST(TrialEndTest, CancellingEndsBothProcesses) {
    Trial trial;
    trial.plan(trial.reportStep() + "\nwait\n");
    std::atomic<bool> cancelled{false};
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ASSERT_TRUE(trial.hasReported(++trial.sleeps));
        cancelled = trial.sleeps == 2;
    };
    AppProber::Options options = trial.options();
    options.cancelled = &cancelled;
    EXPECT_THROW((void)trial.prober().run(options), ProbeCancelled);
    ASSERT_THAT(trial.released, SizeIs(2));
    for (TrialProcess& ended : trial.released) {
        EXPECT_EQ(ended.process.waitUntilExit(), 128 + SIGTERM);
    }
}

TEST(TrialEndTest, CancellingWaitsForTheEnd) {
    Trial trial;
    trial.plan("ignore-termination\n" + trial.reportStep() + "\nwait\n");
    std::atomic<bool> cancelled{false};
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ASSERT_TRUE(trial.hasReported(1));
        cancelled = true;
    };
    AppProber::Options options = trial.options();
    options.cancelled = &cancelled;
    options.release = {};
    EXPECT_THROW((void)trial.prober().run(options), ProbeCancelled);
    EXPECT_TRUE(hasNoChildren());
}

TEST(TrialEndTest, CancellingEarlyPreventsTheSecondLaunch) {
    Trial trial;
    trial.plan(trial.reportStep() + "\nwait\n");
    std::atomic<bool> cancelled{false};
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ASSERT_TRUE(trial.hasReported(1));
        cancelled = true;
    };
    AppProber::Options options = trial.options();
    options.cancelled = &cancelled;
    EXPECT_THROW((void)trial.prober().run(options), ProbeCancelled);
    EXPECT_THAT(trial.released, SizeIs(1));
}

} // namespace
} // namespace quorvel
