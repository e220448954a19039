#include "LaunchKit/Launching/WindowIdentity.h"

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/Targets/DesktopTarget.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Engine = ResolvedProgram::Engine;
using Toolkit = ResolvedProgram::Toolkit;

ResolvedProgram engine(Engine kind) {
    ResolvedProgram program;
    program.launcher = "/bin/sh";
    program.executable = "/bin/sh";
    program.engine = kind;
    return program;
}

ResolvedProgram toolkit(Toolkit kind) {
    ResolvedProgram program = engine(Engine::other);
    program.toolkit = kind;
    return program;
}

TEST(WindowIdentityTest, AnEngineGetsItsOwnOptions) {
    EXPECT_THAT(windowIdentity(engine(Engine::firefox), "X").arguments,
                ElementsAre("--name", "X", "--class", "X"));
    EXPECT_THAT(windowIdentity(engine(Engine::chromium), "X").arguments, ElementsAre("--class=X"));
    EXPECT_THAT(windowIdentity(engine(Engine::electron), "X").arguments, ElementsAre("--class=X"));
    for (const Engine kind : {Engine::firefox, Engine::chromium, Engine::electron}) {
        EXPECT_EQ(windowIdentity(engine(kind), "X").programName, std::nullopt);
        EXPECT_EQ(windowGrouping(engine(kind), {}), WindowGrouping::own);
    }
}

TEST(WindowIdentityTest, AProgramGetsAnotherNameAndNoOptionThatItCouldRefuse) {
    for (const Toolkit kind : {Toolkit::unknown, Toolkit::gtk2, Toolkit::gtk3, Toolkit::gtk4,
                               Toolkit::qt5, Toolkit::qt6, Toolkit::wx}) {
        EXPECT_EQ(windowIdentity(toolkit(kind), "X").programName, "X");
        EXPECT_THAT(windowIdentity(toolkit(kind), "X").arguments, IsEmpty());
    }
}

TEST(WindowIdentityTest, ProgramsThatOfferNoWayAreStartedUnchanged) {
    for (const Engine kind : {Engine::java, Engine::libreOffice, Engine::eclipse}) {
        EXPECT_EQ(windowIdentity(engine(kind), "X"), WindowIdentity{});
        EXPECT_EQ(windowGrouping(engine(kind), {}), WindowGrouping::ownOnX11);
    }
    ResolvedProgram flatpak = toolkit(Toolkit::gtk2);
    flatpak.packaging = ResolvedProgram::Packaging::flatpak;
    EXPECT_EQ(windowIdentity(flatpak, "X"), WindowIdentity{});
    EXPECT_EQ(windowGrouping(flatpak, {}), WindowGrouping::shared);
    ResolvedProgram script = engine(Engine::other);
    script.interpreter = "python3";
    EXPECT_EQ(windowIdentity(script, "X"), WindowIdentity{});
    EXPECT_EQ(windowGrouping(script, {}), WindowGrouping::ownOnX11);
    ResolvedProgram behindAScript = engine(Engine::other);
    behindAScript.executable = "/usr/bin/env";
    EXPECT_EQ(windowIdentity(behindAScript, "X"), WindowIdentity{});
}

TEST(WindowIdentityTest, AProgramThatBehavesAsItIsCalledKeepsItsName) {
    const TemporaryFolder folder;
    fs::create_symlink("/bin/sh", folder / "gvim");
    ResolvedProgram program = engine(Engine::other);
    program.launcher = folder / "gvim";
    program.executable = fs::canonical("/bin/sh");
    EXPECT_EQ(windowIdentity(program, "X"), WindowIdentity{});
}

TEST(WindowIdentityTest, AScriptKnownToTakeTheOptionGetsIt) {
    ResolvedProgram program;
    program.launcher = "/usr/bin/meld";
    program.executable = "/usr/bin/meld";
    program.interpreter = "python3";
    EXPECT_THAT(windowIdentity(program, "X").arguments, ElementsAre("--name=X"));
    EXPECT_EQ(windowGrouping(program, {}), WindowGrouping::ownOnX11);
}

TEST(WindowIdentityTest, OnWaylandSomeToolkitsKeepTheirNames) {
    const Environment noBus{{"DBUS_SESSION_BUS_ADDRESS", "disabled:"}};
    EXPECT_EQ(windowGrouping(toolkit(Toolkit::gtk3), {}), WindowGrouping::own);
    EXPECT_EQ(windowGrouping(toolkit(Toolkit::wx), {}), WindowGrouping::own);
    EXPECT_EQ(windowGrouping(toolkit(Toolkit::unknown), noBus), WindowGrouping::ownOnX11);
    EXPECT_EQ(windowGrouping(toolkit(Toolkit::qt5), noBus), WindowGrouping::ownOnX11);
    EXPECT_EQ(windowGrouping(toolkit(Toolkit::gtk4), {}), WindowGrouping::ownOnX11);
    EXPECT_EQ(windowGrouping(toolkit(Toolkit::gtk4), noBus), WindowGrouping::own);
}

TEST(WindowIdentityTest, AToolkitWithoutWaylandIsNamedFromOutsideHoweverItStarts) {
    EXPECT_EQ(windowGrouping(toolkit(Toolkit::gtk2), {}), WindowGrouping::own);
    ResolvedProgram behindAScript = toolkit(Toolkit::gtk2);
    behindAScript.executable = "/usr/bin/env";
    EXPECT_EQ(windowGrouping(behindAScript, {}), WindowGrouping::own);
}

TEST(WindowIdentityTest, OptionsComeDirectlyAfterTheProgramAndNeverTwice) {
    DesktopTarget target;
    target.program = engine(Engine::firefox);
    target.line = ExecLine::parse("firefox -- %u");
    Process::Options start;
    start.arguments = {"-profile", "/p", "--", "file"};
    applyWindowIdentity(target, "X", start);
    EXPECT_THAT(start.arguments,
                ElementsAre("--name", "X", "--class", "X", "-profile", "/p", "--", "file"));
    start.arguments = {"--class", "Mine"};
    applyWindowIdentity(target, "X", start);
    EXPECT_THAT(start.arguments, ElementsAre("--class", "Mine")) << "the user's own choice";

    target.program = engine(Engine::chromium);
    target.line = ExecLine::parse("flatpak run --branch=stable org.example.App");
    start.arguments = {"run", "--branch=stable", "org.example.App", "file"};
    applyWindowIdentity(target, "X", start);
    EXPECT_THAT(start.arguments,
                ElementsAre("run", "--branch=stable", "org.example.App", "--class=X", "file"));
}

class WindowIdentityTestLaunch : public ::testing::Test {
protected:
    // Returns the command line of a start, each word followed by a NUL.
    [[nodiscard]] std::string commandLine(const std::string& action = {}) const {
        InstanceConfig config = minimalConfig();
        config.targetAppPath = apps_.at("share/applications/thing.desktop").string();
        for (const auto& item : fs::recursive_directory_iterator(apps_.at(""))) {
            if (item.path().filename() == "thing.desktop") {
                config.targetAppPath = item.path().string();
            }
        }
        Process process =
            InstanceLauncher().launch(config, {}, {.windowWord = "Quorvel-1", .action = action});
        std::string words;
        const bool isThere = waitUntil([&] {
            words = read("/proc/" + std::to_string(process.identifier()) + "/cmdline");
            return words.find("wait") != std::string::npos;
        });
        process.terminate();
        process.waitUntilExit();
        return isThere ? words : "";
    }

    TemporaryHome home_{};
    DesktopApps apps_{};
};

TEST_F(WindowIdentityTestLaunch, AProgramIsStartedUnderTheWord) {
    apps_.addProgram("thing", helperProgram());
    apps_.addEntry("thing", "thing wait");
    EXPECT_EQ(commandLine(), std::string("Quorvel-1\0wait\0", 15));
}

TEST_F(WindowIdentityTestLaunch, AnActionTakesThePlaceOfTheEntrysOwnArguments) {
    apps_.addProgram("thing", helperProgram());
    apps_.addEntry("thing", "thing wait",
                   "Actions=more;other;\n[Desktop Action more]\nName=More\nExec=thing write "
                   "/dev/null x wait\n[Desktop Action other]\nName=Other\nExec=true wait now\n");
    EXPECT_EQ(commandLine("more"), std::string("Quorvel-1\0write\0/dev/null\0x\0wait\0", 33));
    EXPECT_EQ(commandLine("other"), std::string("Quorvel-1\0wait\0", 15));
    EXPECT_EQ(commandLine("missing"), std::string("Quorvel-1\0wait\0", 15));
}

} // namespace
} // namespace quorvel::testing
