// What is opened in a clone that runs already.
#include "LaunchKit/Homes/HomeLock.h"
#include "Platform/processes/ProcessFamily.h"
#include "tests/Runner/RunnerFixture.h"
#include "tests/support/DesktopApps.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

class SecondStartTest : public RunnerFixture {
protected:
    ~SecondStartTest() override {
        // By their home, since a number may meanwhile belong to another process.
        for (const ProcessIdentity& process : processesWithHome(cloneHome().string())) {
            ::kill(process.pid, SIGKILL);
        }
    }

    // Returns a clone of a Firefox that runs until it is ended; with a link, it does what `second`
    // says.
    [[nodiscard]] fs::path cloneOfBrowser(const std::string& second, bool hasIcon = false) const {
        const fs::path program = apps_.at("lib/fox/fox");
        write(program, read(helperProgram()));
        makeExecutable(program);
        write(program.parent_path() / "application.ini", "[App]\nRemotingName=fox\n");
        write(program.parent_path() / "libxul.so", "x");
        apps_.addScript("fox", "program=" + program.string() +
                                   "\ncase \"$*\" in *http*) echo $$ > " + at("second").string() +
                                   "; " + second + " ;; esac\necho $$ > " + at("first").string() +
                                   "\nexec /bin/sleep 600\n");
        InstanceConfig config = configOf(ShortcutKind::app);
        config.targetAppPath = apps_.addEntry("fox", "fox %u");
        config.registerAsBrowser = true;
        config.menuBarIcon = hasIcon;
        return wrapper(config);
    }

    [[nodiscard]] pid_t numberIn(const char* name) const {
        const std::string text = read(at(name));
        return text.ends_with('\n') ? std::stoi(text) : 0;
    }

    [[nodiscard]] bool runs(const char* name) const {
        return waitUntil([&] { return numberIn(name) > 0; });
    }

    [[nodiscard]] bool isHomeLocked() const { return FileLock::isHeld(cloneHome() / homeLockName); }

    [[nodiscard]] Process open(const fs::path& clone) const {
        return start(clone, {"http://link.test/"});
    }

    // Opens a link in a clone whose application ends meanwhile, and returns the second runner.
    [[nodiscard]] Process openWhileItEnds(const fs::path& clone) const {
        Process first = start(clone);
        EXPECT_TRUE(runs("first"));
        Process second = open(clone);
        EXPECT_TRUE(runs("second"));
        first.terminate();
        first.waitUntilExit();
        return second;
    }

    DesktopApps apps_;
};

TEST_F(SecondStartTest, TheRunningApplicationTakesALink) {
    const fs::path clone = cloneOfBrowser("exit 0");
    Process runner = start(clone);
    ASSERT_TRUE(runs("first"));
    EXPECT_EQ(open(clone).waitUntilExit(), 0) << log();
    EXPECT_TRUE(runs("second"));
    EXPECT_TRUE(runner.isRunning());
    EXPECT_EQ(log(), "");
    runner.terminate();
    runner.waitUntilExit();
}

TEST_F(SecondStartTest, ASecondStartThatFindsTheFirstEndingBecomesTheClone) {
    const fs::path clone = cloneOfBrowser("exec /bin/sleep 600");
    Process second = openWhileItEnds(clone);
    ASSERT_FALSE(HasFailure());
    ASSERT_TRUE(waitUntil([&] { return isHomeLocked(); })) << "the home is its own";
    EXPECT_EQ(start(clone).waitUntilExit(), 75) << "no third one is started";

    second.sendSignal(SIGKILL);
    second.waitUntilExit();
    EXPECT_EQ(::kill(numberIn("second"), 0), 0);
    EXPECT_TRUE(isHomeLocked()) << "even without its runner";
    ::kill(numberIn("second"), SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return !isHomeLocked(); }));
}

TEST_F(SecondStartTest, ASecondStartThatBecomesTheCloneHasItsIcon) {
    write(at("icon"), "#!/bin/sh\necho $2 >> " + at("icons").string() + "\n");
    makeExecutable(at("icon"));
    const ScopedEnvironment icon("QUORVEL_STATUS_ITEM", at("icon").string());
    const fs::path clone = cloneOfBrowser("exec /bin/sleep 600", true);
    Process second = openWhileItEnds(clone);
    ASSERT_FALSE(HasFailure());
    EXPECT_TRUE(waitUntil([&] {
        return read(at("icons")).find("\n" + std::to_string(second.identifier()) + "\n") !=
               std::string::npos;
    })) << read(at("icons"));
    second.terminate();
    second.waitUntilExit();
}

TEST_F(SecondStartTest, ADocumentThatIsNotTakenLeavesWhatWasTakenBefore) {
    apps_.addScript("note", "if false; then exec electron23 /usr/lib/note/app.asar; fi\n"
                            "case \"$*\" in *bad*) exit 1 ;;\n*good*) echo taken >> " +
                                at("second").string() + "; exit 0 ;; esac\necho $$ > " +
                                at("first").string() + "\nexec /bin/sleep 600\n");
    InstanceConfig config = configOf(ShortcutKind::app);
    config.targetAppPath = apps_.addEntry("note", "note %f");
    config.openWithPassthrough = true;
    const fs::path clone = wrapper(config);
    Process first = start(clone);
    ASSERT_TRUE(runs("first"));
    EXPECT_EQ(start(clone, {"/good", "/bad", "/good"}).waitUntilExit(), 0);
    EXPECT_EQ(read(at("second")), "taken\n");
    EXPECT_THAT(log(), HasSubstr("left out"));
    EXPECT_EQ(start(clone, {"/bad", "/good"}).waitUntilExit(), 75) << "nothing was taken";
    first.terminate();
    first.waitUntilExit();
}

TEST_F(SecondStartTest, ItsRunnerEndsWithIt) {
    const fs::path clone = cloneOfBrowser("exec /bin/sleep 600");
    Process second = openWhileItEnds(clone);
    ASSERT_FALSE(HasFailure());
    ASSERT_TRUE(waitUntil([&] { return isHomeLocked(); }));
    second.terminate();
    EXPECT_EQ(second.waitUntilExit(), 128 + SIGTERM);
    EXPECT_FALSE(isHomeLocked());
}

TEST_F(SecondStartTest, ASecondStartThatOnlyWaitsIsEnded) {
    const fs::path clone = cloneOfBrowser("trap '' TERM; exec /bin/sleep 600");
    Process first = start(clone);
    ASSERT_TRUE(runs("first"));
    EXPECT_EQ(open(clone).waitUntilExit(), 75);
    EXPECT_THAT(log(), HasSubstr("is still running"));
    EXPECT_TRUE(waitUntil(
        [&] { return !fs::exists("/proc/" + std::to_string(numberIn("second")) + "/exe"); }));
    EXPECT_TRUE(first.isRunning());
    first.terminate();
    first.waitUntilExit();
}

TEST_F(SecondStartTest, ABrowserIsToldToComeToTheFrontByItsToken) {
    const fs::path clone = cloneOfBrowser("exit 0");
    Process first = start(clone);
    ASSERT_TRUE(runs("first"));
    // As it is told from now on.
    apps_.addScript("fox", "program=" + apps_.at("lib/fox/fox").string() +
                               "\necho \"$XDG_ACTIVATION_TOKEN $QUORVEL_FOCUS\" > " +
                               at("second").string() + "\nexit 0\n");
    const ScopedEnvironment token("XDG_ACTIVATION_TOKEN", "token-1");
    EXPECT_EQ(start(clone).waitUntilExit(), 75) << "the menu's second start is another matter";
    EXPECT_FALSE(fs::exists(at("second")));
    const ScopedEnvironment focus("QUORVEL_FOCUS", "1");
    EXPECT_EQ(start(clone).waitUntilExit(), 0) << log();
    EXPECT_EQ(read(at("second")), "token-1 \n");
    EXPECT_TRUE(first.isRunning());
    first.terminate();
    first.waitUntilExit();
}

TEST_F(SecondStartTest, AnyOtherApplicationIsNotStartedTwiceToComeToTheFront) {
    apps_.addScript("viewer", "echo once >> " + at("first").string() + "\nexec /bin/sleep 600\n");
    InstanceConfig config = configOf(ShortcutKind::app);
    config.targetAppPath = apps_.addEntry("viewer", "viewer %f");
    const fs::path clone = wrapper(config);
    Process first = start(clone);
    ASSERT_TRUE(waitUntil([&] { return fs::exists(at("first")); }));
    const ScopedEnvironment focus("QUORVEL_FOCUS", "1");
    EXPECT_EQ(start(clone).waitUntilExit(), 75);
    EXPECT_EQ(read(at("first")), "once\n");
    EXPECT_EQ(log(), "") << "it is no fault of the clone";
    first.terminate();
    first.waitUntilExit();
}

// It locks no home that would show that it runs.
TEST_F(SecondStartTest, ACommandIsNotRunTwiceToComeToTheFront) {
    InstanceConfig config = configOf(ShortcutKind::command);
    write(at("once"),
          "#!/bin/sh\necho once >> " + at("first").string() + "\nexec /bin/sleep 600\n");
    makeExecutable(at("once"));
    config.commandPath = at("once").string();
    const fs::path clone = wrapper(config);
    Process first = start(clone);
    ASSERT_TRUE(waitUntil([&] { return read(at("first")) == "once\n"; }));
    const ScopedEnvironment focus("QUORVEL_FOCUS", "1");
    Process second = start(clone);
    EXPECT_EQ(second.waitUntilExit(std::chrono::seconds(20)), 75) << "it has started another one";
    second.terminate();
    EXPECT_EQ(read(at("first")), "once\n");
    EXPECT_EQ(log(), "");
    EXPECT_TRUE(first.isRunning());
    first.terminate();
    first.waitUntilExit();
}

TEST_F(SecondStartTest, AnApplicationThatHasEndedIsNotStartedToComeToTheFront) {
    const fs::path clone = cloneOfBrowser("exit 0");
    const ScopedEnvironment focus("QUORVEL_FOCUS", "1");
    Process runner = start(clone);
    EXPECT_EQ(runner.waitUntilExit(std::chrono::seconds(20)), 75);
    EXPECT_FALSE(fs::exists(at("first")));
    runner.terminate();
}

TEST_F(SecondStartTest, WhatTakesOneDocumentSaysHowManyOthersWereLeftOut) {
    apps_.addScript("viewer", "echo \"$@\"");
    InstanceConfig config = configOf(ShortcutKind::app);
    config.targetAppPath = apps_.addEntry("viewer", "viewer %f");
    config.openWithPassthrough = true;
    EXPECT_EQ(run(config, {"/a"}), 0);
    EXPECT_EQ(log(), "/a\n");
    EXPECT_EQ(run(config, {"/a", "/b", "/c"}), 0);
    EXPECT_THAT(log(), HasSubstr("quorvel-runner: documents that were left out"));
    EXPECT_THAT(log(), HasSubstr(" a clone: 2\n"));
    EXPECT_THAT(log(), Not(HasSubstr("/b")));
}

// A target that is read twice could be another one the second time.
TEST_F(SecondStartTest, AStartReadsItsTargetOnce) {
    apps_.addScript("fox", "exit 0");
    InstanceConfig config = configOf(ShortcutKind::app);
    config.targetAppPath = apps_.addEntry("fox", "fox");
    const fs::path clone = wrapper(config);
    const FileHandle events(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    ASSERT_GE(::inotify_add_watch(events.descriptor(), config.targetAppPath.c_str(), IN_OPEN), 0);
    EXPECT_EQ(start(clone).waitUntilExit(), 0) << log();
    inotify_event event[8];
    EXPECT_EQ(::read(events.descriptor(), event, sizeof event), ssize_t{sizeof event[0]});
}

} // namespace
} // namespace quorvel
