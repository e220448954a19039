#include "CommandLine/ProbeCommands.h"

#include "CommandLine/ProbeTexts.h"
#include "tests/ProbeKit/Trial.h"

#include <nlohmann/json.hpp>

#include <csignal>
#include <gmock/gmock.h>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;
using Json = nlohmann::json;

std::string noEntitlements(const fs::path& /*bundle*/) {
    return {};
}

// The streams and the desktop of one command.
struct Session {
    explicit Session(Workspace& workspace, bool onTerminal = false)
        : context{input, output, errors, onTerminal, onTerminal, workspace} {}

    std::istringstream input{};
    std::ostringstream output{};
    std::ostringstream errors{};
    CommandContext context;

    [[nodiscard]] Json json() const { return Json::parse(output.str()); }
};

ProbeOptions quickly(const Trial& trial) {
    return {0.5, 0.3, trial.library.string()};
}

TEST(ProbeCommandsTest, AppsCommandPrintsTheCatalog) {
    const TemporaryFolder folder;
    makeAppBundle(folder / "Zoo.app", {{"CFBundleIconFile", "I"}});
    write(folder / "Zoo.app/Contents/Resources/I.icns", "icon");
    makeAppBundle(folder / "ark.app");
    StubWorkspace workspace;
    Session session(workspace);
    appsCommand(session.context, {folder.path()}, true, noEntitlements);
    EXPECT_EQ(session.json(),
              Json::array(
                  {{{"url", folder / "ark.app"}, {"name", "ark"}, {"bundleId", "com.example.ark"}},
                   {{"url", folder / "Zoo.app"},
                    {"name", "Zoo"},
                    {"bundleId", "com.example.Zoo"},
                    {"iconURL", folder / "Zoo.app/Contents/Resources/I.icns"}}}));
}

TEST(ProbeCommandsTest, AppsCommandKeepsControlCharactersFromTheTerminal) {
    const TemporaryFolder folder;
    makeAppBundle(folder / "bad\x1b[31m\n.app",
                  {{"CFBundleExecutable", "x"}, {"CFBundleIdentifier", "com.example.bad"}});
    StubWorkspace workspace;
    Session session(workspace);
    appsCommand(session.context, {folder.path()}, false, noEntitlements);
    EXPECT_THAT(session.output.str(), Not(HasSubstr("\x1b")));
    EXPECT_THAT(session.output.str(), HasSubstr("com.example.bad"));
}

TEST(ProbeCommandsTest, AppsCommandPrintsAnEmptyArrayForNoApps) {
    const TemporaryFolder folder;
    StubWorkspace workspace;
    Session session(workspace);
    appsCommand(session.context, {folder.path()}, true, noEntitlements);
    EXPECT_EQ(session.json(), Json::array());
}

TEST(ProbeCommandsTest, RunningCommandPrintsAllOrThoseOfAnIdentifier) {
    StubWorkspace workspace;
    workspace.running = {{"com.a", "/A.app", 7}, {"com.b", "/B.app", 8}};
    Session all(workspace);
    runningCommand(all.context, std::nullopt, true);
    EXPECT_EQ(all.json().size(), 2U);
    Session one(workspace);
    runningCommand(one.context, "com.b", true);
    EXPECT_EQ(one.json(),
              Json::array({{{"bundleId", "com.b"}, {"bundleURL", "/B.app"}, {"pid", 8}}}));
    Session text(workspace);
    runningCommand(text.context, "com.b", false);
    EXPECT_EQ(text.output.str(), "8  com.b  /B.app\n");
}

TEST(ProbeCommandsTest, ProbeCommandPrintsTheProfileAndTheBuckets) {
    Trial trial;
    const ScopedEnvironment temporary("TMPDIR", trial.temporary.string());
    const std::string leak = trial.library.string() + "/Preferences/com.example.notes.plist";
    trial.plan("write ~/file\nwrite " + leak + "\nwait\n");
    Session session(*trial.workspace);
    probeCommand(session.context, trial.app, quickly(trial), true, noEntitlements);
    const Json json = session.json();
    EXPECT_EQ(json.size(), 4U);
    EXPECT_EQ(json["inUse"], false);
    EXPECT_EQ(json["profile"].size(), 9U);
    EXPECT_EQ(json["profile"]["bundleId"], trial.bundleId);
    EXPECT_EQ(json["profile"]["confidence"], "autoDetected");
    EXPECT_EQ(json["complete"], true);
    for (const auto& [name, paths] : json["buckets"].items()) {
        EXPECT_TRUE(caseNamed<LeakBucket>(name)) << name;
        EXPECT_TRUE(paths.is_array());
    }
    EXPECT_EQ(session.errors.str(), "") << "no bar without a terminal";
    EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "no process is left";
}

TEST(ProbeCommandsTest, ProbeCommandDrawsABarOnATerminalAndErasesIt) {
    Trial trial;
    const ScopedEnvironment temporary("TMPDIR", trial.temporary.string());
    trial.plan("wait\n");
    Session session(*trial.workspace, true);
    probeCommand(session.context, trial.app, quickly(trial), false, noEntitlements);
    EXPECT_THAT(session.errors.str(),
                AllOf(HasSubstr("[####"), EndsWith("\r" + std::string(42, ' ') + "\r")));
    EXPECT_THAT(session.output.str(), HasSubstr("Recommendation"));
}

TEST(ProbeCommandsTest, ProbeCommandSaysWhatIsNotAnApp) {
    const TemporaryFolder folder;
    StubWorkspace workspace;
    Session session(workspace);
    try {
        probeCommand(session.context, folder / "None.app", {}, false, noEntitlements);
        FAIL() << "it was probed";
    } catch (const CommandError& error) {
        EXPECT_EQ(error.what(), "Not a readable .app bundle: " + (folder / "None.app").string());
    }
}

TEST(ProbeCommandsTest, ProbeCommandInterruptedEndsBothProcessesAndItself) {
    Trial trial;
    const fs::path numbers = trial.folder / "numbers";
    makeScriptedAppBundle(trial.app, "echo $$ >> '" + numbers.string() + "'; exec sleep 600");
    const pid_t command = ::fork();
    if (command == 0) {
        ::setenv("TMPDIR", trial.temporary.c_str(), 1);
        Session session(*trial.workspace);
        probeCommand(session.context, trial.app, {0.05, 600, trial.library.string()}, true,
                     noEntitlements);
        ::_exit(0);
    }
    const auto started = [&] {
        const std::string text = read(numbers);
        return std::count(text.begin(), text.end(), '\n') == 2;
    };
    EXPECT_TRUE(waitUntil(started));
    ::kill(command, SIGINT);
    int status = 0;
    ::waitpid(command, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGINT);
    std::ifstream lines(numbers);
    for (pid_t pid = 0; lines >> pid;) {
        EXPECT_NE(::kill(pid, 0), 0) << pid << " still runs";
    }
}

TEST(ProbeCommandsTest, ProbeDescriptionSaysWhatFellWhereWithThreeExamplesOfEachLeak) {
    AppProfile profile;
    profile.bundleId = "com.example.Notes";
    profile.displayName = "Notes\x1b";
    profile.strategy = Strategy::containerRedirect;
    profile.singleton = SingletonTier::machPort;
    ProbeResult result;
    result.buckets[LeakBucket::captured] = {"/home/captured"};
    result.buckets[LeakBucket::dataLeak] = {"/a\x1b[2J", "/a\x1b[2J", "/b", "/c", "/d"};
    result.buckets[LeakBucket::prefsLeak] = {"/p"};
    result.complete = false;
    const std::string text = description(profile, result, inEnglish);
    EXPECT_THAT(text, HasSubstr("container-redirect: it writes data outside its home folder"));
    EXPECT_THAT(text, HasSubstr("hands over to the first and quits"));
    EXPECT_THAT(text, HasSubstr("      5 into your Application Support\n"));
    EXPECT_THAT(text, HasSubstr("      1 into your Preferences\n"));
    EXPECT_THAT(text, HasSubstr("      1 inside the trial's home folder\n"));
    EXPECT_THAT(text, AllOf(HasSubstr("/b\n"), HasSubstr("/c\n"), Not(HasSubstr("/d\n"))));
    EXPECT_THAT(text, Not(HasSubstr("/home/captured")));
    EXPECT_THAT(text, HasSubstr("may be incomplete"));
    EXPECT_THAT(text, Not(HasSubstr("\x1b")));
}

TEST(ProbeCommandsTest, ProbeDescriptionSpeaksOfFoldersAsThisSystemDoes) {
    const auto marked = [](const char* context, const char* text) {
        return context == std::string_view("ProbeTexts") ? "<" + std::string(text) + ">" : text;
    };
    const std::string text = description(AppProfile{}, ProbeResult{}, marked);
    const std::string own = description(AppProfile{}, ProbeResult{});
    for (const char* folder : {"into your Application Support", "into your Preferences"}) {
        EXPECT_THAT(text, HasSubstr(" <" + std::string(folder) + ">\n"));
        EXPECT_THAT(own, HasSubstr(" " + inSystemWords("ProbeTexts", folder) + "\n"));
    }
}

TEST(ProbeCommandsTest, ProbeDescriptionShowsTheVariablesAndWhatTheyCost) {
    AppProfile profile;
    EXPECT_THAT(description(profile, ProbeResult{}), Not(HasSubstr("Variable")));
    profile.environment.emplace()["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
    EXPECT_THAT(description(profile, ProbeResult{}),
                AllOf(HasSubstr("Variable          DBUS_SESSION_BUS_ADDRESS=disabled:\n"),
                      HasSubstr("Without the session bus")));
    profile.environment.emplace()["A"] = "1\x1b";
    EXPECT_THAT(description(profile, ProbeResult{}),
                AllOf(HasSubstr("Variable          A=1"), Not(HasSubstr("\x1b")),
                      Not(HasSubstr("Without the session bus"))));
}

TEST(ProbeCommandsTest, ProbeDescriptionSaysThatTheAppIsInUse) {
    ProbeResult result;
    EXPECT_THAT(description(AppProfile{}, result), Not(HasSubstr("You have the app open")));
    result.isInUse = true;
    EXPECT_THAT(description(AppProfile{}, result), HasSubstr("You have the app open"));
    EXPECT_EQ(jsonForm(AppProfile{}, result)["inUse"], true);
}

TEST(ProbeCommandsTest, ProbeDescriptionSaysThatTheRecordIsComplete) {
    EXPECT_THAT(description(AppProfile{}, ProbeResult{}), HasSubstr("The record is complete."));
}

TEST(ProbeCommandsTest, ProbeJsonShowsPathsOfAnyBytes) {
    AppProfile profile;
    profile.displayName = "\xff";
    ProbeResult result;
    result.buckets[LeakBucket::captured] = {"/\xfe"};
    EXPECT_EQ(jsonForm(profile, result)["profile"]["displayName"], "ÿ");
}

TEST(ProbeCommandsTest, ProbeOfChromiumFindsThatAHomeOfItsOwnIsEnough) {
    if (!fs::exists("/usr/bin/chromium")) {
        GTEST_SKIP() << "the package chromium is not installed";
    }
    Trial trial("org.chromium.Chromium");
    makeScriptedAppBundle(
        trial.app,
        "exec /usr/bin/chromium --headless --no-sandbox --disable-gpu --no-first-run "
        "--disable-background-networking --disable-component-update --disable-sync "
        "--user-data-dir=\"$HOME/data\" about:blank",
        {{"CFBundleIdentifier", "org.chromium.Chromium"}});
    trial.onSleep = [&](AppProber::Seconds /*time*/) {
        const auto holdsProfile = [](const fs::path& home) {
            return fs::exists(home / "data/Local State");
        };
        ++trial.sleeps;
        EXPECT_TRUE(waitUntil(
            [&] {
                const auto homes = trial.homes();
                return std::count_if(homes.begin(), homes.end(), holdsProfile) >= trial.sleeps;
            },
            std::chrono::seconds(90)));
    };
    const ProbeResult result = trial.run();
    EXPECT_GT(result.count(LeakBucket::captured), 20U);
    EXPECT_EQ(result.count(LeakBucket::dataLeak), 0U);
    EXPECT_EQ(result.count(LeakBucket::containerLeak), 0U);
    EXPECT_EQ(result.recommendedStrategy, Strategy::homeOverride);
    EXPECT_TRUE(result.complete);
    trial.endAll();
}

} // namespace
} // namespace quorvel
