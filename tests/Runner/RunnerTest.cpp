// The real runner inside real wrappers.
#include "LaunchKit/InstanceConfig.h"
#include "tests/Runner/RunnerFixture.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
using ::testing::EndsWith;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class RunnerTest : public RunnerFixture {
protected:
    // The one that is installed would open windows.
    ScopedEnvironment webHost_{"QUORVEL_WEB_HOST", "/nonexistent"};
};

TEST_F(RunnerTest, EndsWithTheStatusOfItsTarget) {
    EXPECT_EQ(run(appConfig({"exit", "0"})), 0);
    EXPECT_EQ(run(appConfig({"exit", "7"})), 7);
    EXPECT_EQ(run(appConfig({"exit", "255"})), 255);
}

TEST_F(RunnerTest, ASignalThatEndsTheTargetIsAddedTo128) {
    EXPECT_EQ(run(appConfig({"signal", "9"})), 128 + 9);
    EXPECT_EQ(run(appConfig({"signal", "15"})), 128 + 15);
}

TEST_F(RunnerTest, StaysAliveAsLongAsItsTarget) {
    Process runner = start(wrapper(appConfig({"write", at("started"), "x", "wait"})));
    ASSERT_TRUE(waitUntil([&] { return fs::exists(at("started")); }));
    EXPECT_TRUE(runner.isRunning());
    runner.terminate();
    EXPECT_EQ(runner.waitUntilExit(), 128 + SIGTERM);
}

class RunnerTestSignals : public RunnerTest, public ::testing::WithParamInterface<int> {};

TEST_P(RunnerTestSignals, AreForwardedToTheTarget) {
    Process runner =
        start(wrapper(appConfig({"trap", "~/caught", "write", at("ready"), "x", "wait"})));
    ASSERT_TRUE(waitUntil([&] { return fs::exists(at("ready")); }));
    runner.sendSignal(GetParam());
    EXPECT_EQ(runner.waitUntilExit(), 0) << "the target handled it and ended well";
    EXPECT_EQ(read(cloneHome() / "caught"), std::to_string(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Every, RunnerTestSignals, ::testing::Values(SIGTERM, SIGINT, SIGHUP));

TEST_F(RunnerTest, SeveralSignalsInARowReachATarget) {
    InstanceConfig config = configOf(ShortcutKind::command);
    config.commandPath = "/bin/sh";
    config.commandArgs = {"-c", "n=0; trap 'n=$((n+1)); echo $n > " + at("count").string() +
                                    "' HUP; echo x > " + at("ready").string() +
                                    "; while [ $n -lt 2 ]; do sleep 0.05; done; exit 3"};
    Process runner = start(wrapper(config));
    ASSERT_TRUE(waitUntil([&] { return fs::exists(at("ready")); }));
    runner.sendSignal(SIGHUP);
    ASSERT_TRUE(waitUntil([&] { return read(at("count")) == "1\n"; }));
    EXPECT_TRUE(runner.isRunning());
    runner.sendSignal(SIGHUP);
    EXPECT_EQ(runner.waitUntilExit(), 3);
}

TEST_F(RunnerTest, ReturnsTheStatusEvenIfItsParentIgnoresChildren) {
    const fs::path bundle = wrapper(appConfig({"exit", "7"}));
    Process::Options options;
    options.executable = "/bin/sh";
    options.arguments = {"-c", "trap '' CHLD HUP; \"$0\"; exit $?",
                         bundle / "Contents/MacOS/runner"};
    EXPECT_EQ(Process::run(options).waitUntilExit(), 7);
}

TEST_F(RunnerTest, SetsTheTargetsHomeAndLog) {
    EXPECT_EQ(run(appConfig({"environment", "complain", "complained"})), 0);
    EXPECT_THAT(log(), HasSubstr("\nHOME=" + cloneHome().string() + "\n"));
    EXPECT_THAT(log(), HasSubstr("CFFIXED_USER_HOME=" + cloneHome().string() + "\n"));
    EXPECT_THAT(log(), HasSubstr("complained\n"));
    EXPECT_EQ(read(errors()), "");
}

TEST_F(RunnerTest, DocumentsAreDroppedUnlessTheCloneAcceptsThem) {
    EXPECT_EQ(run(appConfig({"arguments", "own"}), {"/doc"}), 0);
    EXPECT_EQ(log(), "1\nown\n");
}

TEST_F(RunnerTest, DocumentsFollowTheConfiguredArgumentsUnchanged) {
    InstanceConfig config = appConfig({"arguments", "{{instanceHome}}"});
    config.openWithPassthrough = true;
    EXPECT_EQ(run(config, {"/a b", "{{instanceHome}}", "~", "--flag"}), 0);
    EXPECT_EQ(log(), "5\n" + cloneHome().string() + "\n/a b\n{{instanceHome}}\n~\n--flag\n");
}

TEST_F(RunnerTest, AddressesReachACloneThatIsABrowser) {
    InstanceConfig config = appConfig({"arguments"});
    config.registerAsBrowser = true;
    EXPECT_EQ(run(config, {"https://example.com/?a=b&c"}), 0);
    EXPECT_EQ(log(), "1\nhttps://example.com/?a=b&c\n");
}

TEST_F(RunnerTest, RunsACommand) {
    InstanceConfig config = configOf(ShortcutKind::command);
    config.openWithPassthrough = true;
    config.commandPath = helperProgram();
    config.commandArgs = {"arguments", "{{instanceHome}}"};
    EXPECT_EQ(run(config, {"/doc"}), 0);
    EXPECT_EQ(log(), "1\n" + cloneHome().string() + "\n") << "a command takes no documents";
}

TEST_F(RunnerTest, AWebCloneReportsThatItsHostIsMissingHereAndInTheLog) {
    EXPECT_EQ(run(configOf(ShortcutKind::web)), 69);
    const std::string line =
        "quorvel-runner: the web host for “Work” is not installed; on Linux, the "
        "packages quorvel and libwebkitgtk-6.0-4 contain it\n";
    EXPECT_EQ(read(errors()), line);
    EXPECT_EQ(log(), line);
    EXPECT_EQ(run(configOf(ShortcutKind::web)), 69);
    EXPECT_EQ(log(), line + line) << "the log is continued";
}

TEST_F(RunnerTest, AWebCloneWithoutAWritableLogReportsItHere) {
    write(home_ / "I", "a file");
    EXPECT_EQ(run(configOf(ShortcutKind::web)), 69);
    EXPECT_THAT(read(errors()), HasSubstr("is not installed"));
}

TEST_F(RunnerTest, AWebHostThatCantBeLoadedIsReportedWithItsPackage) {
    write(at("broken.so"), "not a module");
    const ScopedEnvironment module("QUORVEL_WEB_HOST", at("broken.so").string());
    EXPECT_EQ(run(configOf(ShortcutKind::web)), 69);
    const std::string line = "quorvel-runner: the web host for “Work” can’t be loaded; install the "
                             "package libwebkitgtk-6.0-4\n";
    EXPECT_EQ(read(errors()), line);
    EXPECT_THAT(log(), EndsWith(line));
    EXPECT_THAT(log(), HasSubstr(at("broken.so").string() + ": ")) << "the loader's own words";
}

TEST_F(RunnerTest, AWebHostIsNotSearchedFor) {
    write(at("quorvel-web-host.so"), "not a module");
    const ScopedEnvironment libraries("LD_LIBRARY_PATH", at("").string());
    InstanceConfig config = configOf(ShortcutKind::web);
    config.environment = {{"QUORVEL_WEB_HOST", at("quorvel-web-host.so").string()}};
    for (const char* relative : {"quorvel-web-host.so", "./quorvel-web-host.so"}) {
        const ScopedEnvironment module("QUORVEL_WEB_HOST", relative);
        EXPECT_EQ(run(config), 69) << relative;
        EXPECT_THAT(read(errors()), HasSubstr("is not installed")) << relative;
    }
}

TEST_F(RunnerTest, AWebCloneOpensWebAddressesOnly) {
    InstanceConfig config = configOf(ShortcutKind::web);
    config.url = "file:///etc/passwd";
    EXPECT_EQ(run(config), 78);
    EXPECT_EQ(read(errors()),
              "quorvel-runner: “Work” can’t be opened at its address: it is not a web "
              "address\n");
    EXPECT_EQ(log(), read(errors()));
    config.url = "example.com";
    config.openWithPassthrough = true;
    for (const char* address :
         {"javascript:alert(1)", "file:///etc/passwd", "/etc/passwd", "a.b", ""}) {
        EXPECT_EQ(run(config, {address}), 64) << address;
    }
    EXPECT_EQ(run(config, {"https://example.com/"}), 69) << "only the host is missing";
    config.openWithPassthrough = false;
    EXPECT_EQ(run(config, {"javascript:alert(1)"}), 69) << "what it doesn't accept is dropped";
}

TEST_F(RunnerTest, AMessageIsOneLineForAnyName) {
    const fs::path bundle = wrapper(configOf(ShortcutKind::web));
    InstanceConfig config = configOf(ShortcutKind::web);
    config.displayName = "two\nlines\x1B[31m\r\x7F\u009b\u202e";
    write(bundle / "Contents/Resources/instance.json", config.json());
    EXPECT_EQ(start(bundle).waitUntilExit(), 69);
    EXPECT_EQ(
        read(errors()),
        "quorvel-runner: the web host for “two\\nlines\\u{1b}[31m\\u{d}\\u{7f}\\u{9b}\\u{202e}” "
        "is not installed; on Linux, the packages quorvel and libwebkitgtk-6.0-4 contain it\n");
    EXPECT_EQ(log(), read(errors()));
}

TEST_F(RunnerTest, AnUnreadableConfigurationIsReported) {
    const fs::path bundle = wrapper(configOf(ShortcutKind::web));
    const fs::path file = bundle / "Contents/Resources/instance.json";
    const auto expectRefused = [&](const char* what) {
        EXPECT_EQ(start(bundle).waitUntilExit(), 78) << what;
        EXPECT_EQ(read(errors()),
                  "quorvel-runner: no readable configuration at " + file.string() + "\n")
            << what;
        fs::remove_all(file);
    };
    write(file, "{}");
    expectRefused("an empty object");
    expectRefused("no file");
    ::mkfifo(file.c_str(), 0600);
    expectRefused("a FIFO");
    fs::create_directory(file);
    expectRefused("a folder");
    fs::create_symlink(file, file);
    expectRefused("a link to itself");
    write(file, std::string(100'000, '['));
    expectRefused("endless nesting");
    write(file, configOf(ShortcutKind::web).json());
    fs::resize_file(file, std::uintmax_t{100} << 20U);
    expectRefused("100 MiB");
}

TEST_F(RunnerTest, ATargetThatCantStartIsReportedHereAndInTheLog) {
    const InstanceConfig config = appConfig({});
    const fs::path bundle = wrapper(config);
    fs::remove(at("Thing.app/Contents/MacOS/Thing"));
    EXPECT_EQ(start(bundle).waitUntilExit(), 71);
    EXPECT_EQ(read(errors()),
              "quorvel-runner: “Thing” couldn’t be started: no such file or directory\n");
    EXPECT_EQ(log(), read(errors()));
}

TEST_F(RunnerTest, AMissingTargetIsReportedHereAndInTheLog) {
    const fs::path bundle = wrapper(appConfig({}));
    fs::remove_all(at("Thing.app"));
    EXPECT_EQ(start(bundle).waitUntilExit(), 71);
    EXPECT_EQ(read(errors()),
              "quorvel-runner: Not a readable .app bundle: " + at("Thing.app").string() + "\n");
    EXPECT_EQ(log(), read(errors()));
}

TEST_F(RunnerTest, AnUnsupportedAppIsRefused) {
    InstanceConfig config = appConfig({});
    config.strategy = Strategy::unsupported;
    EXPECT_EQ(run(config), 71);
    EXPECT_EQ(read(errors()), "quorvel-runner: App not clonable: com.example.Thing\n");
    EXPECT_TRUE(fs::is_regular_file(cloneHome() / "quorvel-instance.log"));
    EXPECT_EQ(log(), "");
}

TEST_F(RunnerTest, AShortcutWithoutATargetMakesNoFolder) {
    const std::map<ShortcutKind, std::string> reasons{
        {ShortcutKind::file, "file shortcut has no target path"},
        {ShortcutKind::command, "command shortcut has no executable"}};
    for (const auto& [kind, reason] : reasons) {
        EXPECT_EQ(run(configOf(kind)), 71) << reason;
        EXPECT_EQ(read(errors()), "quorvel-runner: App not clonable: " + reason + "\n");
        EXPECT_FALSE(fs::exists(cloneHome())) << reason;
    }
}

TEST_F(RunnerTest, ALogMayBeALinkToADevice) {
    fs::create_directories(cloneHome());
    fs::create_symlink("/dev/null", cloneHome() / "quorvel-instance.log");
    EXPECT_EQ(run(appConfig({"print", "unwanted", "complain", "unwanted"})), 0);
    EXPECT_EQ(read(errors()), "") << "the output goes to the device";
    EXPECT_EQ(fs::read_symlink(cloneHome() / "quorvel-instance.log"), "/dev/null");
}

TEST_F(RunnerTest, FindsItsOwnWrapperThroughLinksAndFromAnywhere) {
    const fs::path bundle = wrapper(appConfig({"print", "found"}));
    fs::rename(bundle, at("Moved elsewhere.app"));
    fs::create_symlink(at("Moved elsewhere.app/Contents/MacOS/runner"), at("shortcut"));
    Process::Options options;
    options.executable = at("shortcut");
    options.directory = "/";
    EXPECT_EQ(Process::run(options).waitUntilExit(), 0);
    EXPECT_EQ(log(), "found\n");
}

} // namespace
} // namespace quorvel
