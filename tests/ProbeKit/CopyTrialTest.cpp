#include "ProbeKit/CopyTrial.h"

#include "ProbeKit/AppProber.h"
#include "ProbeKit/ProfileGenerator.h"
#include "tests/support/DesktopApps.h"
#include "tests/support/StubWorkspace.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <thread>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::Pair;
using ::testing::SizeIs;
namespace fs = std::filesystem;
using Seconds = AppProber::Seconds;

/// A user with a home and a desktop entry whose program is a script.
class CopyTrialTest : public ::testing::Test {
protected:
    CopyTrialTest() { fs::create_directories(temporary_); }
    ~CopyTrialTest() override { endAll(); }

    // The script writes down each start. `$shared` is a folder that all copies know.
    fs::path entry(const std::string& script, const std::string& keys = "") {
        fs::create_directories(shared_);
        apps_.addScript("notes-program", "PATH=/usr/bin:/bin\nshared='" + shared_.string() +
                                             "'\nreal='" + home_.path().string() +
                                             "'\necho started >> \"$shared/starts\"\n" + script);
        return apps_.addEntry("org.example.Notes", "notes-program", keys);
    }

    AppProber prober(const fs::path& app) {
        AppProber::Dependencies with;
        with.workspace = std::make_shared<StubWorkspace>();
        with.temporary = temporary_;
        return std::move(*AppProber::forApp(app, std::move(with)));
    }

    ProbeResult probe(const fs::path& app, Seconds settleB = Seconds(0.3)) {
        AppProber::Options options;
        options.settleA = Seconds(0.5);
        options.settleB = settleB;
        options.release = [this](TrialProcess copy) { released_.push_back(std::move(copy)); };
        return prober(app).run(options);
    }

    void endAll() {
        terminateAndWait(std::exchange(released_, {}), std::chrono::milliseconds(500));
    }

    [[nodiscard]] std::ptrdiff_t starts() const {
        const std::string text = read(shared_ / "starts");
        return std::count(text.begin(), text.end(), '\n');
    }

    static std::vector<std::string> paths(const ProbeResult& result, LeakBucket bucket) {
        const auto found = result.buckets.find(bucket);
        return found == result.buckets.end() ? std::vector<std::string>{} : found->second;
    }

    TemporaryFolder folder_;
    TemporaryHome home_;
    DesktopApps apps_;
    fs::path temporary_ = folder_ / "tmp";
    fs::path shared_ = folder_ / "shared";
    std::vector<TrialProcess> released_{};
};

constexpr auto wait = "\nexec sleep 600\n";

// Hands over to the copy that claimed a name first, which is known to all that are on the bus.
constexpr auto claimNameOnBus =
    "[ \"$DBUS_SESSION_BUS_ADDRESS\" = disabled: ] || mkdir \"$shared/name\" || exit 0\n";

const auto withoutBus = ElementsAre(Pair("DBUS_SESSION_BUS_ADDRESS", "disabled:"));

TEST_F(CopyTrialTest, AnAppThatKeepsToItsHomeNeedsNoMore) {
    const ProbeResult result = probe(
        entry(std::string("mkdir -p \"$HOME/.notes\" \"$XDG_CONFIG_HOME/notes\"\n"
                          "echo > \"$HOME/.notes/db\"; echo > \"$XDG_CONFIG_HOME/notes/rc\"") +
              wait));
    EXPECT_THAT(paths(result, LeakBucket::captured), Contains(EndsWith("/.notes/db")));
    EXPECT_THAT(paths(result, LeakBucket::captured), Contains(EndsWith("/.config/notes/rc")));
    EXPECT_THAT(result.buckets, SizeIs(1));
    EXPECT_EQ(result.singleton, SingletonTier::none);
    EXPECT_THAT(result.environment, IsEmpty());
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
    EXPECT_TRUE(result.complete);
    EXPECT_EQ(starts(), 2);
}

TEST_F(CopyTrialTest, AnAppThatFindsTheRealHomeLeaksDataThere) {
    const ProbeResult result =
        probe(entry(std::string("mkdir -p \"$real/.notes\"; echo > \"$real/.notes/db\"\n"
                                "mkdir -p \"$real/.config/dconf\" \"$real/.cache/other\"\n"
                                "echo > \"$real/.config/dconf/user\"\n"
                                "echo > \"$real/.cache/other/file\"\n"
                                "mkdir \"$real/Documents\"; echo > \"$real/Documents/notes\"") +
                    wait));
    const std::string home = home_.path().string();
    EXPECT_THAT(paths(result, LeakBucket::dataLeak), Contains(home + "/.notes/db"));
    EXPECT_THAT(paths(result, LeakBucket::dataLeak), Not(Contains(home + "/.cache/other/file")));
    EXPECT_THAT(paths(result, LeakBucket::prefsLeak), Contains(home + "/.config/dconf/user"));
    EXPECT_THAT(paths(result, LeakBucket::irrelevant), Contains(home + "/.cache/other/file"));
    EXPECT_EQ(result.recommendedStrategy, Strategy::containerRedirect);
}

TEST_F(CopyTrialTest, AnAppThatFindsItsRealContainerNeedsAnIdentity) {
    const ProbeResult result =
        probe(entry(std::string("mkdir -p \"$real/.var/app/org.example.Notes/data\"\n"
                                "echo > \"$real/.var/app/org.example.Notes/data/db\"") +
                    wait));
    EXPECT_EQ(result.recommendedStrategy, Strategy::wrapperIdentity);
}

TEST_F(CopyTrialTest, ASecondCopyThatWaitsForALockNeverComesUp) {
    const ProbeResult result = probe(entry("exec flock \"$shared/lock\" sleep 600"));
    EXPECT_EQ(result.singleton, SingletonTier::lockFile);
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
    EXPECT_EQ(starts(), 2);
}

TEST_F(CopyTrialTest, ASecondCopyThatHandsOverOnTheBusRunsWithoutIt) {
    const fs::path app = entry(claimNameOnBus + std::string(wait));
    const ProbeResult result = probe(app);
    EXPECT_EQ(result.singleton, SingletonTier::machPort);
    EXPECT_THAT(result.environment, withoutBus);
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
    EXPECT_EQ(starts(), 3);
    const AppProfile profile =
        ProfileGenerator::makeProfile(*AppBundle::read(app), result, "Linux");
    EXPECT_THAT(profile.environment.value(), withoutBus);
    EXPECT_EQ(AppProfile::fromJson(profile.encodedJSON()), profile);
    EXPECT_THAT(released_, SizeIs(3));
    endAll();
    for (const fs::path& home : fs::directory_iterator(temporary_)) {
        EXPECT_THAT(processesWithHome(home.string()), IsEmpty());
    }
}

TEST_F(CopyTrialTest, ACopyThatHandsOverToTheUsersOwnIsTriedWithoutTheBus) {
    fs::create_directories(shared_ / "name");
    const ProbeResult result = probe(entry(claimNameOnBus + std::string(wait)));
    EXPECT_EQ(result.singleton, SingletonTier::machPort);
    EXPECT_THAT(result.environment, withoutBus);
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
    EXPECT_EQ(starts(), 3);
}

TEST_F(CopyTrialTest, ASecondCopyThatAlwaysHandsOverCannotBeHelped) {
    const ProbeResult result = probe(entry("mkdir \"$shared/name\" || exit 0" + std::string(wait)));
    EXPECT_EQ(result.singleton, SingletonTier::machPort);
    EXPECT_THAT(result.environment, IsEmpty());
    EXPECT_EQ(result.recommendedStrategy, Strategy::unsupported);
    EXPECT_EQ(starts(), 3);
    EXPECT_FALSE(ProfileGenerator::makeProfile(AppBundle{}, result, "Linux").environment);
}

TEST_F(CopyTrialTest, ASecondCopyThatFailsIsNotTriedAgain) {
    const ProbeResult result = probe(entry("mkdir \"$shared/name\" || exit 3" + std::string(wait)));
    EXPECT_EQ(result.singleton, SingletonTier::machPort);
    EXPECT_THAT(result.environment, IsEmpty());
    EXPECT_EQ(starts(), 2);
}

TEST_F(CopyTrialTest, AnAppThatEndsByItselfShowsNothing) {
    const ProbeResult result = probe(entry("exit 0"));
    EXPECT_EQ(result.singleton, SingletonTier::unknown);
    EXPECT_THAT(result.environment, IsEmpty());
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
}

TEST_F(CopyTrialTest, AFlatpaksApplicationIsTriedWithoutTheBusThatFlatpakItselfNeeds) {
    apps_.addScript("flatpak", "[ \"$DBUS_SESSION_BUS_ADDRESS\" = disabled: ] && exit 1\n"
                               "case \"$*\" in *--no-session-bus*)\n"
                               "export DBUS_SESSION_BUS_ADDRESS=disabled: ;; esac\n"
                               "exec notes-program");
    entry(claimNameOnBus + std::string(wait));
    const fs::path app = apps_.addEntry("org.example.Notes", "flatpak run org.example.Notes",
                                        "X-Flatpak=org.example.Notes\n");
    const ProbeResult result = probe(app);
    EXPECT_EQ(result.singleton, SingletonTier::machPort);
    EXPECT_THAT(result.environment, withoutBus);
    EXPECT_EQ(starts(), 3);
}

TEST_F(CopyTrialTest, ACopyThatIsStillStartingIsWaitedFor) {
    // It computes for about a second before it looks for another copy.
    const ProbeResult result = probe(entry("i=0; while [ $i -lt 600000 ]; do i=$((i + 1)); done\n" +
                                           std::string(claimNameOnBus) + wait),
                                     Seconds(0.01));
    EXPECT_EQ(result.singleton, SingletonTier::machPort);
    EXPECT_THAT(result.environment, withoutBus);
}

TEST_F(CopyTrialTest, AnAppMayGoOnInAnotherProcess) {
    fs::create_directories(apps_.at("lib"));
    const fs::path program = apps_.at("lib/notes-real");
    fs::copy_file("/bin/sleep", program);
    const fs::path app = entry(program.string() + " 600 &\nexit 0");
    ASSERT_EQ(AppBundle::read(app)->executableURL(), program);
    const ProbeResult result = probe(app);
    EXPECT_EQ(result.singleton, SingletonTier::none);
    EXPECT_EQ(starts(), 2);
    endAll();
    for (const fs::path& home : fs::directory_iterator(temporary_)) {
        EXPECT_THAT(processesWithHome(home.string()), IsEmpty());
    }
}

TEST_F(CopyTrialTest, AnAppThatTheUserHasOpenIsInUse) {
    fs::create_directories(apps_.at("lib"));
    const fs::path program = apps_.at("lib/notes-real");
    fs::copy_file("/bin/sleep", program);
    const fs::path app = entry("exec " + program.string() + " 600");
    EXPECT_FALSE(probe(app).isInUse) << "copies of a trial don't count";
    Environment environment = currentEnvironment();
    environment["HOME"] = home_.path();
    Process own =
        Process::run({.executable = program, .arguments = {"600"}, .environment = environment});
    EXPECT_TRUE(probe(app).isInUse);
    own.terminate();
    own.waitUntilExit();
}

TEST_F(CopyTrialTest, AFirstCopyEndsIfTheSecondCannotBeLaunched) {
    const fs::path app = entry("rm \"$0\"\necho > \"$HOME/up\"" + std::string(wait));
    EXPECT_THROW((void)probe(app), PlatformError);
    EXPECT_THAT(released_, SizeIs(1));
    endAll();
    for (const fs::path& home : fs::directory_iterator(temporary_)) {
        EXPECT_THAT(processesWithHome(home.string()), IsEmpty());
    }
}

// The number of folders that the system watches for this process.
std::size_t watches() {
    std::size_t count = 0;
    for (const auto& file : fs::directory_iterator("/proc/self/fdinfo")) {
        const std::string info = read(file.path());
        for (std::size_t at = info.find("inotify wd:"); at != std::string::npos;
             at = info.find("inotify wd:", at + 1)) {
            ++count;
        }
    }
    return count;
}

TEST_F(CopyTrialTest, OfAHomeWithManyFoldersFewAreWatched) {
    for (int number = 0; number < 1000; ++number) {
        const std::string name = std::to_string(number);
        fs::create_directories(home_.path() / ".cache/build" / name);
        fs::create_directories(home_.path() / ".tool/cache" / name / "x");
        fs::create_directories(home_.path() / "Documents" / name);
    }
    fs::create_directories(home_.path() / ".config/suite/notes/deep/deeper");
    AppProber::Dependencies with;
    with.temporary = temporary_;
    std::size_t most = 0;
    with.sleep = [&](Seconds time) {
        most = std::max(most, watches());
        std::this_thread::sleep_for(time);
    };
    const fs::path app =
        entry("echo > \"$real/.config/suite/notes/deep/deeper/file\"" + std::string(wait));
    AppProber::Options options;
    options.settleA = Seconds(0.5);
    options.settleB = Seconds(0.1);
    options.release = [this](TrialProcess copy) { released_.push_back(std::move(copy)); };
    const ProbeResult result = AppProber::forApp(app, with)->run(options);
    EXPECT_GT(most, 10U);
    EXPECT_LT(most, 100U);
    EXPECT_THAT(paths(result, LeakBucket::dataLeak),
                Contains(home_.path().string() + "/.config/suite/notes/deep/deeper/file"));
    EXPECT_TRUE(result.complete);
}

// How often, half a second each, a copy is waited for that is seen to do this in turn, and from
// then on nothing.
std::size_t timesWaited(const AppBundle& app, std::vector<ProcessActivity> seen, Seconds patience) {
    std::vector<IsolatedProcess> copies;
    std::size_t waited = 0;
    std::size_t looked = 0;
    CopyTrial::Steps steps;
    steps.launch = [](const std::string& home, const CopyTrial::Variables&) -> IsolatedProcess {
        return {Process::run({.executable = "/bin/sleep", .arguments = {"600"}}), home};
    };
    steps.wait = [&](Seconds time) {
        waited += copies.size() == 1 && time == Seconds(0.5) ? 1U : 0U;
    };
    steps.patience = patience;
    steps.activity = [&](pid_t) { return seen[std::min(looked++, seen.size() - 1)]; };
    CopyTrial(app, std::move(steps), copies).run();
    terminateAndWait(std::move(copies), std::chrono::milliseconds(500));
    return waited;
}

TEST_F(CopyTrialTest, ACopyThatUsesOrAwaitsTheProcessorIsWaitedFor) {
    using namespace std::chrono_literals;
    const AppBundle app = AppBundle::read(entry(wait)).value();
    const ProcessActivity idle{.cpuTime = 70ms};
    EXPECT_EQ(timesWaited(app, {idle}, Seconds(5)), 1U);
    // A tenth of the time is no longer idle.
    EXPECT_EQ(timesWaited(app, {{}, {.cpuTime = 50ms}, {.cpuTime = 99ms}}, Seconds(5)), 2U);
    // It has no processor yet.
    const ProcessActivity ready{.cpuTime = 70ms, .wantsToRun = true};
    EXPECT_EQ(timesWaited(app, {idle, ready, ready, idle}, Seconds(5)), 3U);
    const ProcessActivity waiting{.cpuTime = 70ms, .waitsForLock = true};
    EXPECT_EQ(timesWaited(app, {idle, waiting}, Seconds(5)), 1U);
    EXPECT_EQ(timesWaited(app, {ready}, Seconds(2)), 4U);
}

TEST_F(CopyTrialTest, TiersFollowFromTheCopiesThatAreUp) {
    EXPECT_EQ(singletonTier(true, 2), SingletonTier::none);
    EXPECT_EQ(singletonTier(true, 1), SingletonTier::lockFile);
    EXPECT_EQ(singletonTier(false, 1), SingletonTier::machPort);
    EXPECT_EQ(singletonTier(false, 0), SingletonTier::unknown);
}

} // namespace
} // namespace quorvel
