#include "LaunchKit/WrapperFactory.h"

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/WrapperGenerator.h"
#include "Platform/files/PropertyListFile.h"
#include "Platform/processes/MainExecutable.h"
#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using FactoryError = WrapperFactory::FactoryError;
namespace fs = std::filesystem;

class WrapperFactoryTest : public ::testing::Test {
protected:
    WrapperFactoryTest() { write(folder_ / "runner", "runner"); }

    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    [[nodiscard]] WrapperFactory::Request webRequest(const std::string& name) const {
        WrapperFactory::Request request;
        request.kind = ShortcutKind::web;
        request.displayName = name;
        request.outputDir = at("out");
        return request;
    }

    [[nodiscard]] WrapperFactory::Request appRequest(const fs::path& target) const {
        WrapperFactory::Request request = webRequest("Work");
        request.kind = ShortcutKind::app;
        request.targetApp = target;
        return request;
    }

    [[nodiscard]] fs::path electronApp() const {
        fs::path app = makeAppBundle(at("Chat.app"));
        fs::create_directories(app / "Contents/Frameworks/Electron Framework.framework");
        return app;
    }

    [[nodiscard]] fs::path create(const WrapperFactory::Request& request) const {
        return WrapperFactory(at("runner")).create(request);
    }

    [[nodiscard]] InstanceConfig created(const WrapperFactory::Request& request) const {
        return InstanceRegistry().record(create(request)).value().config;
    }

    [[nodiscard]] std::string errorOf(const WrapperFactory::Request& request,
                                      FactoryError::Case expected) const {
        try {
            (void)WrapperFactory(at("runner")).create(request);
        } catch (const FactoryError& error) {
            EXPECT_EQ(error.kind(), expected);
            EXPECT_STREQ(error.what(), error.description().c_str());
            EXPECT_FALSE(fs::exists(at("out"))) << "nothing may be written";
            return error.description();
        }
        return "no error";
    }

    TemporaryFolder folder_;
    TemporaryHome home_;
};

TEST_F(WrapperFactoryTest, ReturnsInAdvanceWhereTheCloneWillBe) {
    const WrapperFactory::Request request = webRequest("  Work \n");
    EXPECT_EQ(WrapperFactory::wrapperURL(request), at("out") / "Work.app");
    EXPECT_EQ(WrapperFactory::wrapperURL(request), create(request));
}

TEST_F(WrapperFactoryTest, SpaceAroundTheNameIsRemovedEverywhere) {
    WrapperFactory::Request request = webRequest(" \t Work \n");
    EXPECT_EQ(create(request), at("out/Work.app"));
    const InstanceConfig config = created(request);
    EXPECT_EQ(config.displayName, "Work");
    EXPECT_EQ(config.instanceHome, "~/QuorvelInstances/Work");
    EXPECT_EQ(config.bundleId, "app.quorvel.instance.work");
}

TEST_F(WrapperFactoryTest, PunctuationSurvivesInTheHomeAndNotInTheIdentifier) {
    const InstanceConfig config = created(webRequest("My App (2)"));
    EXPECT_EQ(config.instanceHome, "~/QuorvelInstances/My App (2)");
    EXPECT_EQ(config.bundleId, "app.quorvel.instance.my-app--2-");
}

TEST_F(WrapperFactoryTest, WritesIntoTheUsersApplicationsUnlessTold) {
    WrapperFactory::Request request = webRequest("Work");
    request.outputDir.reset();
    EXPECT_EQ(WrapperFactory::defaultOutputDir(), home_ / "Applications");
    EXPECT_EQ(create(request), home_ / "Applications/Work.app");
    EXPECT_EQ(InstanceRegistry().list().size(), 1U);
}

TEST_F(WrapperFactoryTest, EngineArgumentsAreTheDefault) {
    WrapperFactory::Request request = appRequest(electronApp());
    EXPECT_THAT(created(request).extraArgs,
                ElementsAre("--user-data-dir={{instanceHome}}/QuorvelData"));
    request.extraArgs = std::vector<std::string>{};
    EXPECT_THAT(created(request).extraArgs, ElementsAre());
    request.extraArgs = {"--own"};
    EXPECT_THAT(created(request).extraArgs, ElementsAre("--own"));
}

TEST_F(WrapperFactoryTest, AnAppCloneRemembersItsTarget) {
    const fs::path target = makeAppBundle(at("Thing.app"));
    const InstanceConfig config = created(appRequest(target));
    EXPECT_EQ(config.targetAppPath, target.string());
    EXPECT_THAT(config.extraArgs, ElementsAre());
}

TEST_F(WrapperFactoryTest, SlashesAtTheEndOfPathsAreDropped) {
    const fs::path app = makeAppBundle(at("Thing.app"));
    WrapperFactory::Request request = appRequest(app.native() + "//");
    request.outputDir = at("out").native() + "/";
    const fs::path wrapper = create(request);
    EXPECT_EQ(wrapper.native(), at("out/Work.app").native());
    EXPECT_EQ(InstanceRegistry().record(wrapper)->config.targetAppPath, app.native());
    EXPECT_EQ(InstanceRegistry().record(wrapper.native() + "/")->id(), wrapper.native());
    const auto listed = InstanceRegistry({at("out").native() + "/"}).list();
    ASSERT_EQ(listed.size(), 1U);
    EXPECT_EQ(listed.front().id(), wrapper.native());
}

TEST_F(WrapperFactoryTest, AWebCloneNeedsNoTarget) {
    WrapperFactory::Request request = webRequest("Site");
    request.targetApp = electronApp();
    const InstanceConfig config = created(request);
    EXPECT_EQ(config.kind, ShortcutKind::web);
    EXPECT_EQ(config.targetAppPath, "");
    EXPECT_THAT(config.extraArgs, ElementsAre());
    EXPECT_EQ(config.url, std::nullopt);
}

TEST_F(WrapperFactoryTest, EverythingElseIsTakenOverUnchanged) {
    WrapperFactory::Request request = webRequest("All");
    request.kind = ShortcutKind::command;
    request.url = "u";
    request.openPath = "o";
    request.commandPath = "c";
    request.commandArgs = {"a", ""};
    request.workingDirectory = "w";
    request.instanceHome = "/h";
    request.bundleId = "given.Id";
    request.strategy = Strategy::containerRedirect;
    request.environment = {{"E", "1"}};
    request.infoPlistOverrides = {{"P", "2"}};
    request.registerAsBrowser = true;
    request.openWithPassthrough = true;
    request.iconLabel = IconLabel{"L", "ff0000", IconLabel::Position::center};
    request.menuBarIcon = true;
    request.menuBarIconTemplate = true;
    request.shareUserFolders = false;
    request.extraArgs = {"x"};
    InstanceConfig expected;
    expected.displayName = "All";
    expected.kind = ShortcutKind::command;
    expected.url = "u";
    expected.openPath = "o";
    expected.commandPath = "c";
    expected.commandArgs = {"a", ""};
    expected.workingDirectory = "w";
    expected.instanceHome = "/h";
    expected.bundleId = "given.Id";
    expected.strategy = Strategy::containerRedirect;
    expected.environment = {{"E", "1"}};
    expected.infoPlistOverrides = {{"P", "2"}};
    expected.registerAsBrowser = true;
    expected.openWithPassthrough = true;
    expected.iconLabel = request.iconLabel;
    expected.menuBarIcon = true;
    expected.menuBarIconTemplate = true;
    expected.shareUserFolders = false;
    expected.extraArgs = {"x"};
    EXPECT_EQ(created(request).json(), expected.json());
}

// One flag of a request, and where it goes.
struct Flag {
    const char* name;
    bool WrapperFactory::Request::*given;
    bool InstanceConfig::*taken;
};
constexpr std::array<Flag, 5> flags{{
    {"registerAsBrowser", &WrapperFactory::Request::registerAsBrowser,
     &InstanceConfig::registerAsBrowser},
    {"openWithPassthrough", &WrapperFactory::Request::openWithPassthrough,
     &InstanceConfig::openWithPassthrough},
    {"menuBarIcon", &WrapperFactory::Request::menuBarIcon, &InstanceConfig::menuBarIcon},
    {"menuBarIconTemplate", &WrapperFactory::Request::menuBarIconTemplate,
     &InstanceConfig::menuBarIconTemplate},
    {"shareUserFolders", &WrapperFactory::Request::shareUserFolders,
     &InstanceConfig::shareUserFolders},
}};

TEST_F(WrapperFactoryTest, EachFlagSetAloneIsTheOnlyOneSet) {
    for (const Flag& set : flags) {
        WrapperFactory::Request request = webRequest("Flags");
        for (const Flag& flag : flags) {
            request.*flag.given = flag.given == set.given;
        }
        const fs::path wrapper = create(request);
        const InstanceConfig config = InstanceRegistry().record(wrapper).value().config;
        for (const Flag& flag : flags) {
            EXPECT_EQ(config.*flag.taken, flag.taken == set.taken)
                << flag.name << " where only " << set.name << " is set";
        }
        const auto info = readPropertyList(wrapper / "Contents/Info.plist").value();
        EXPECT_FALSE(info.contains("LSUIElement")) << set.name;
    }
}

TEST_F(WrapperFactoryTest, HidingAloneSetsNoFlag) {
    WrapperFactory::Request request = webRequest("Hidden");
    request.hideWrapperIcon = true;
    request.shareUserFolders = false;
    const InstanceConfig config = created(request);
    for (const Flag& flag : flags) {
        EXPECT_FALSE(config.*flag.taken) << flag.name;
    }
}

TEST_F(WrapperFactoryTest, IconAndHidingReachTheWrapper) {
    WrapperFactory::Request request = webRequest("Work");
    write(at("icon"), "icon bytes");
    request.customIcon = at("icon");
    request.hideWrapperIcon = true;
    const fs::path wrapper = create(request);
    EXPECT_EQ(read(wrapper / "Contents/Resources/AppIcon.icns"), "icon bytes");
    EXPECT_EQ(readPropertyList(wrapper / "Contents/Info.plist")->at("LSUIElement"), true);
}

TEST_F(WrapperFactoryTest, AGivenIdentifierIsKeptEvenWhereItCollides) {
    WrapperFactory::Request first = webRequest("One");
    WrapperFactory::Request second = webRequest("Two");
    first.bundleId = second.bundleId = "same";
    EXPECT_EQ(created(first).bundleId, "same");
    EXPECT_EQ(created(second).bundleId, "same");
}

TEST_F(WrapperFactoryTest, ANameOfSpaceAloneIsRefused) {
    for (const char* name : {"", " \t\r\n"}) {
        EXPECT_EQ(errorOf(webRequest(name), FactoryError::Case::emptyName),
                  "The clone needs a non-empty name.");
    }
}

TEST_F(WrapperFactoryTest, AnUnreadableTargetIsRefused) {
    EXPECT_EQ(errorOf(appRequest("/no/such.app"), FactoryError::Case::badTarget),
              "Not a readable .app: /no/such.app");
    fs::create_directories(at("Empty.app"));
    EXPECT_EQ(errorOf(appRequest(at("Empty.app")), FactoryError::Case::badTarget),
              "Not a readable .app: " + at("Empty.app").string());
    WrapperFactory::Request request = appRequest("");
    request.targetApp.reset();
    EXPECT_EQ(errorOf(request, FactoryError::Case::badTarget), "Not a readable .app: /");
}

TEST_F(WrapperFactoryTest, ARefusedTargetIsNamedByItsError) {
    for (const std::optional<fs::path>& target :
         {std::optional<fs::path>("/no/such.app"), std::optional<fs::path>()}) {
        WrapperFactory::Request request = appRequest("");
        request.targetApp = target;
        try {
            (void)create(request);
            FAIL() << "it was made";
        } catch (const FactoryError& error) {
            EXPECT_EQ(error.kind(), FactoryError::Case::badTarget);
            EXPECT_EQ(error.url(), target.value_or("/"));
        }
    }
    EXPECT_EQ(FactoryError::emptyName().url(), "");
}

TEST_F(WrapperFactoryTest, AnEmptyNameIsReportedBeforeABadTarget) {
    WrapperFactory::Request request = appRequest("/no/such.app");
    request.displayName = " ";
    EXPECT_EQ(errorOf(request, FactoryError::Case::emptyName), "The clone needs a non-empty name.");
}

TEST_F(WrapperFactoryTest, TheRunnerBesideThisProgramIsFound) {
    const fs::path beside = mainExecutable().parent_path() / "quorvel-runner";
    ASSERT_TRUE(fs::exists(beside));
    EXPECT_EQ(WrapperFactory().create(webRequest("Work")), at("out/Work.app"));
    EXPECT_EQ(read(at("out/Work.app/Contents/MacOS/runner")), read(beside));
}

void expectRunnerNotFound(const WrapperFactory::Request& request) {
    try {
        (void)WrapperFactory().create(request);
        FAIL() << "it was made";
    } catch (const FactoryError& error) {
        EXPECT_EQ(error.kind(), FactoryError::Case::runnerNotFound);
        EXPECT_EQ(error.description(), "Could not locate the quorvel-runner binary to embed.");
    }
    EXPECT_FALSE(fs::exists(*request.outputDir)) << "nothing may be written";
}

TEST_F(WrapperFactoryTest, WithoutARunnerNoKindOfCloneIsMade) {
    if (!fs::exists(mainExecutable().parent_path() / "quorvel-runner")) {
        expectRunnerNotFound(webRequest("Work"));
        expectRunnerNotFound(appRequest("/no/such.app"));
        EXPECT_EQ(create(webRequest("Work")), at("out/Work.app")) << "a given one will do";
        return;
    }
    // There is a runner beside this program, so a copy of it continues where there is none.
    fs::create_directories(at("bin"));
    fs::copy_file(mainExecutable(), at("bin/program"));
    Process::Options options;
    options.executable = at("bin/program");
    options.arguments = {"--gtest_filter=WrapperFactoryTest.WithoutARunner*"};
    options.directory = at("bin");
    const std::string output = Process::capture(options, 1U << 16U);
    EXPECT_THAT(output, ::testing::HasSubstr("[  PASSED  ] 1 test.")) << output;
}

TEST_F(WrapperFactoryTest, ARunnerThatVanishedIsTheGeneratorsError) {
    EXPECT_THROW((void)WrapperFactory(at("none")).create(webRequest("Work")),
                 WrapperGenerator::GenError);
}

} // namespace
} // namespace quorvel
