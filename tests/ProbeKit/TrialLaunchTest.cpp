#include "Platform/homes/IsolatedEnvironment.h"
#include "tests/ProbeKit/Trial.h"

#include <csignal>
#include <gmock/gmock.h>
#include <set>
#include <sstream>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::Each;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;
namespace fs = std::filesystem;

// A process that ends is for a moment no application any more, but still running.
bool haveChildrenEnded() {
    for (const fs::path& thread : fs::directory_iterator("/proc/self/task")) {
        std::istringstream children(read(thread / "children"));
        for (std::string pid; children >> pid;) {
            const std::string facts = read("/proc/" + pid + "/stat");
            if (facts.substr(facts.rfind(')') + 1).substr(0, 2) != " Z") {
                return false;
            }
        }
    }
    return true;
}

TEST(TrialLaunchTest, AnAppThatKeepsToItsHomeIsCaptured) {
    Trial trial;
    trial.plan("write ~/Library/Application Support/Notes/x.db\nwrite ~/.config/notes\n" +
               trial.reportStep() + "\nwait\n");
    const ProbeResult result = trial.run();
    EXPECT_EQ(result.buckets.size(), 1U);
    EXPECT_THAT(bucketPaths(result, LeakBucket::captured),
                Contains(EndsWith("/Library/Application Support/Notes/x.db")));
    EXPECT_EQ(result.singleton, SingletonTier::none);
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
    EXPECT_TRUE(result.complete);
    trial.endAll();
    EXPECT_TRUE(hasNoChildren());
    EXPECT_THAT(trial.homes(), SizeIs(2));
}

TEST(TrialLaunchTest, AnAppThatWritesIntoTheRealLibraryLeaks) {
    Trial trial("com.example.Notes");
    const std::string library = trial.library.string();
    trial.plan("write " + library + "/Application Support/notes/x.db\nwrite " + library +
               "/Preferences/com.example.notes.plist\nwrite " + library +
               "/Preferences/com.other.plist\n" + trial.reportStep() + "\nwait\n");
    const ProbeResult result = trial.run();
    EXPECT_THAT(bucketPaths(result, LeakBucket::dataLeak),
                Contains(library + "/Application Support/notes/x.db"));
    EXPECT_THAT(bucketPaths(result, LeakBucket::prefsLeak),
                Contains(library + "/Preferences/com.example.notes.plist"));
    EXPECT_THAT(bucketPaths(result, LeakBucket::irrelevant),
                Contains(library + "/Preferences/com.other.plist"));
    EXPECT_EQ(result.recommendedStrategy, Strategy::containerRedirect);
    EXPECT_TRUE(result.prefsLeak());
}

TEST(TrialLaunchTest, AnAppThatWritesIntoItsContainerNeedsAnIdentity) {
    Trial trial;
    trial.plan("write " + trial.library.string() + "/Application Support/Notes/x\nwrite " +
               trial.library.string() + "/Containers/" + trial.bundleId + "/Data/x\n" +
               trial.reportStep() + "\nwait\n");
    EXPECT_EQ(trial.run().recommendedStrategy, Strategy::wrapperIdentity);
}

TEST(TrialLaunchTest, AnAppThatHandsOverIsNotClonable) {
    Trial trial;
    trial.plan(trial.reportStep() + "\nhand-over " + (trial.folder / "lock").string() + "\nwait\n");
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ASSERT_TRUE(trial.hasReported(++trial.sleeps));
        // The first holds the lock before the second comes, and the second quits.
        ASSERT_TRUE(waitUntil([&] {
            return trial.sleeps == 1 ? fs::exists(trial.folder / "lock")
                                     : descendantsOf(::getpid()).size() == 1;
        }));
    };
    const ProbeResult result = trial.run();
    EXPECT_EQ(result.singleton, SingletonTier::machPort);
    EXPECT_EQ(result.recommendedStrategy, Strategy::unsupported);
}

TEST(TrialLaunchTest, AnAppThatWaitsForALockNeverComesUp) {
    Trial trial;
    trial.plan(trial.reportStep() + "\nlock " + (trial.folder / "lock").string() + "\nwait\n");
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ASSERT_TRUE(trial.hasReported(++trial.sleeps));
        ASSERT_TRUE(waitUntil([&] {
            return fs::exists(trial.folder / "lock") &&
                   trial.workspace->runningApplications()
                           .withBundleIdentifier(trial.bundleId)
                           .size() == 1;
        }));
    };
    const ProbeResult result = trial.run();
    EXPECT_EQ(result.singleton, SingletonTier::lockFile);
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
}

TEST(TrialLaunchTest, AnAppOfSeveralProcessesThatWaitsForALockNeverComesUp) {
    Trial trial;
    const std::string lock = (trial.folder / "lock").string();
    const fs::path up = trial.folder / "up";
    trial.plan("helper\n" + trial.reportStep() + "\nlock " + lock + "\nwrite " + up.string() +
               "\nwait\n");
    const auto running = [&] {
        return trial.workspace->runningApplications().withBundleIdentifier(trial.bundleId);
    };
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ASSERT_TRUE(trial.hasReported(++trial.sleeps));
        ASSERT_TRUE(waitUntil([&] { return fs::exists(up) && running().size() == 1; }));
    };
    EXPECT_EQ(trial.run().singleton, SingletonTier::lockFile);
    trial.endAll();
    EXPECT_TRUE(waitUntil([&] { return running().empty(); })) << "the helpers end as well";
}

TEST(TrialLaunchTest, AnAppOfSeveralProcessesThatStartsTwiceIsNotASingleton) {
    Trial trial;
    trial.plan("helper\nhelper\n" + trial.reportStep() + "\nwait\n");
    EXPECT_EQ(trial.run().singleton, SingletonTier::none);
}

TEST(TrialLaunchTest, AnAppWhoseParentOnlyStartsAChildCountsAsHandingOver) {
    Trial trial;
    const fs::path children = trial.folder / "children";
    trial.plan("fork " + children.string() + "\nwrite ~/from-child\n" + trial.reportStep() +
               "\nwait\n");
    const ProbeResult result = trial.run();
    EXPECT_EQ(result.singleton, SingletonTier::machPort);
    EXPECT_THAT(bucketPaths(result, LeakBucket::captured), Contains(EndsWith("/from-child")));
    std::ifstream numbers(children);
    for (pid_t child = 0; numbers >> child;) {
        ::kill(child, SIGKILL);
    }
}

TEST(TrialLaunchTest, AnAppThatWritesTwentyThousandFilesIsRecordedToTheLast) {
    Trial trial;
    trial.plan("many ~/data 20000\n" + trial.reportStep() + "\nwait\n");
    const ProbeResult result = trial.run();
    EXPECT_TRUE(result.complete);
    const auto captured = bucketPaths(result, LeakBucket::captured);
    const std::set<std::string> paths(captured.begin(), captured.end());
    std::size_t files = 0;
    for (const fs::path& home : trial.homes()) {
        for (int number = 0; number < 20000; ++number) {
            files +=
                paths.count(home / "data" / std::to_string(number / 100) / std::to_string(number));
        }
    }
    EXPECT_EQ(files, 20000U);
}

TEST(TrialLaunchTest, AnAppThatEndsAtOnceHasAnUnknownTier) {
    Trial trial;
    trial.plan(trial.reportStep() + "\nexit 3\n");
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ASSERT_TRUE(trial.hasReported(++trial.sleeps));
        ASSERT_TRUE(waitUntil(haveChildrenEnded));
    };
    const ProbeResult result = trial.run();
    EXPECT_EQ(result.singleton, SingletonTier::unknown);
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
}

TEST(TrialLaunchTest, AnAppThatCrashesHasAnUnknownTier) {
    Trial trial;
    trial.plan(trial.reportStep() + "\ncrash\n");
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ASSERT_TRUE(trial.hasReported(++trial.sleeps));
        ASSERT_TRUE(waitUntil(haveChildrenEnded));
    };
    EXPECT_EQ(trial.run().singleton, SingletonTier::unknown);
    trial.endAll();
    EXPECT_TRUE(hasNoChildren());
}

TEST(TrialLaunchTest, AnAppFindsOurEnvironmentAsACloneWouldAndNothingElse) {
    Trial trial;
    makeAppBundle(trial.app, {{"CFBundleIdentifier", trial.bundleId}}, "/usr/bin/env");
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ++trial.sleeps;
        EXPECT_TRUE(waitUntil([&] {
            const auto homes = trial.homes();
            return std::count_if(homes.begin(), homes.end(), [](const fs::path& home) {
                       return !read(home / "quorvel-instance.log").empty();
                   }) == trial.sleeps;
        }));
    };
    (void)trial.run();
    for (const fs::path& home : trial.homes()) {
        Environment expected = currentEnvironment();
        expected["HOME"] = home;
        expected["CFFIXED_USER_HOME"] = home;
        for (const auto& [key, value] : isolatedEnvironment(home, currentEnvironment())) {
            expected[key] = value;
        }
        std::multiset<std::string> lines;
        for (const auto& [key, value] : expected) {
            lines.insert(key + "=" + value);
        }
        std::multiset<std::string> found;
        std::ifstream log(home / "quorvel-instance.log");
        for (std::string line; std::getline(log, line);) {
            found.insert(line);
        }
        EXPECT_EQ(found, lines);
    }
}

TEST(TrialLaunchTest, AnAppWhoseHomeLiesInTheLibraryIsCapturedAllTheSame) {
    // An item in two watched folders is reported under the first of them.
    Trial trial;
    fs::create_directory(trial.library / "tmp");
    fs::remove(trial.temporary);
    fs::create_directory_symlink(trial.library / "tmp", trial.temporary);
    trial.plan("write ~/file\n" + trial.reportStep() + "\nwait\n");
    EXPECT_THAT(bucketPaths(trial.run(), LeakBucket::captured), Contains(EndsWith("/file")));
}

TEST(TrialLaunchTest, AnAppThatFloodsItsOutputFloodsOnlyItsLog) {
    Trial trial;
    trial.plan("flood 8000000\n" + trial.reportStep() + "\nwait\n");
    const ProbeResult result = trial.run();
    EXPECT_THAT(bucketPaths(result, LeakBucket::captured),
                Contains(EndsWith("/quorvel-instance.log")));
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
}

TEST(TrialLaunchTest, AnAppThatDeletesItsHomeHasAResult) {
    Trial trial;
    trial.plan("write ~/file\ndelete-home\n" + trial.reportStep() + "\nwait\n");
    const ProbeResult result = trial.run();
    EXPECT_THAT(bucketPaths(result, LeakBucket::captured), Contains(EndsWith("/file")));
    EXPECT_THAT(trial.homes(), IsEmpty());
}

TEST(TrialLaunchTest, AnAppWithoutAnExecutableCannotBeLaunched) {
    Trial trial;
    fs::remove(trial.app / "Contents/MacOS/Notes");
    try {
        (void)trial.run();
        FAIL() << "it was launched";
    } catch (const PlatformError& error) {
        EXPECT_THAT(error.description(), HasSubstr("Notes"));
        EXPECT_THAT(error.description(), HasSubstr("couldn’t be started"));
    }
    EXPECT_THAT(trial.homes(), SizeIs(2));
    EXPECT_TRUE(hasNoChildren());
}

TEST(TrialLaunchTest, AnAppWhoseHomeCannotBeMadeIsNotLaunched) {
    Trial trial;
    fs::remove(trial.temporary);
    write(trial.temporary, "a file is in the way");
    EXPECT_THROW((void)trial.run(), PlatformError);
    EXPECT_TRUE(hasNoChildren());
}

TEST(TrialLaunchTest, AnElectronAppGetsItsDataFolderInTheHome) {
    Trial trial;
    fs::create_directories(trial.app / "Contents/Frameworks/Electron Framework.framework");
    const std::string arguments = (trial.folder / "arguments").string();
    makeScriptedAppBundle(trial.app, "echo \"$#:$1:$HOME\" >> '" + arguments + "'");
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        ++trial.sleeps;
        ASSERT_TRUE(waitUntil([&] {
            const std::string text = read(arguments);
            return std::count(text.begin(), text.end(), '\n') == trial.sleeps;
        }));
    };
    (void)trial.run();
    std::ifstream lines(arguments);
    for (std::string line; std::getline(lines, line);) {
        const std::string home = line.substr(line.rfind(':') + 1);
        EXPECT_THAT(trial.homes(), Contains(fs::path(home)));
        EXPECT_EQ(line, "1:--user-data-dir=" + home + "/QuorvelData:" + home);
    }
}

TEST(TrialLaunchTest, AnAppRunsUnderTwoHomesOfWhichOnlyTheFirstIsWatched) {
    Trial trial;
    trial.plan("write ~/file\n" + trial.reportStep() + "\nwait\n");
    const ProbeResult result = trial.run();
    const auto captured = bucketPaths(result, LeakBucket::captured);
    ASSERT_FALSE(captured.empty());
    const std::string first = captured.front().substr(0, trial.temporary.string().size() + 51);
    EXPECT_THAT(captured, Each(StartsWith(first)));
    for (const fs::path& home : trial.homes()) {
        EXPECT_TRUE(fs::exists(home / "file"));
    }
}

TEST(TrialLaunchTest, ReportsItsProgress) {
    Trial trial;
    trial.plan("wait\n");
    const AppProber prober = trial.prober();
    AppProber::Seconds slept{0};
    trial.onSleep = [&](AppProber::Seconds time) { slept += time; };
    std::vector<double> fractions;
    AppProber::Options options = trial.options();
    options.progress = [&](double fraction) { fractions.push_back(fraction); };
    options.settleA = AppProber::Seconds(0.7);
    options.settleB = AppProber::Seconds(0.2);
    (void)prober.run(options);
    EXPECT_NEAR(slept.count(), 0.9, 1e-9);
    EXPECT_TRUE(std::is_sorted(fractions.begin(), fractions.end()));
    EXPECT_GE(fractions.size(), 18U);
    EXPECT_DOUBLE_EQ(fractions.back(), 1.0);
}

TEST(TrialLaunchTest, ATrialWithRealWaitsTakesNineSeconds) {
    Trial trial;
    trial.plan("write ~/file\n" + trial.reportStep() + "\nwait\n");
    AppProber::Dependencies with = trial.dependencies();
    with.sleep = {};
    auto prober = AppProber::forApp(trial.app, with);
    ASSERT_TRUE(prober);
    const auto start = std::chrono::steady_clock::now();
    AppProber::Options options;
    options.release = trial.options().release;
    const ProbeResult result = prober->run(options);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::seconds(9));
    EXPECT_EQ(result.singleton, SingletonTier::none);
    EXPECT_THAT(bucketPaths(result, LeakBucket::captured), Contains(EndsWith("/file")));
}

} // namespace
} // namespace quorvel
