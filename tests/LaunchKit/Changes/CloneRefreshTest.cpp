#include "LaunchKit/Changes/CloneRefresh.h"

#include "LaunchKit/Changes/ChangeJournal.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "LaunchKit/Wrappers/WrapperNotes.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/files/ItemIdentity.h"
#include "Platform/staging/StagedChange.h"
#include "tests/LaunchKit/Changes/ChangedClones.h"
#include "tests/support/DesktopApps.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

class CloneRefreshTest : public ::testing::Test, protected ChangedClones {
protected:
    [[nodiscard]] std::vector<StaleReason> reasons(const fs::path& wrapper) const {
        return refresh.reasonsFor(*InstanceRegistry().record(wrapper));
    }
    // As an update of the target does.
    void changeTargetsIcon() const {
        fs::rename(writePicture("new.png", 64, 0xFFC03030U),
                   home / "Thing.app/Contents/Resources/Icon.icns");
    }

    CloneRefresh refresh{runnerProgram()};
};

TEST_F(CloneRefreshTest, ANewCloneIsNotStaleAndStaysAsItIs) {
    const fs::path wrapper = make(appRequest());
    const auto before = treeOf(wrapper);
    EXPECT_THAT(reasons(wrapper), IsEmpty());
    EXPECT_FALSE(refresh.refresh(wrapper).isChanged);
    EXPECT_TRUE(treeOf(wrapper) == before);
}

TEST_F(CloneRefreshTest, AnOldRunnerIsReplacedAndNothingElse) {
    const fs::path wrapper = make(appRequest());
    auto before = treeOf(wrapper);
    write(wrapper / "Contents/MacOS/runner", "an older one");
    EXPECT_THAT(reasons(wrapper), ElementsAre(StaleReason::runner));
    EXPECT_TRUE(refresh.refresh(wrapper).isChanged);
    EXPECT_TRUE(treeOf(wrapper) == before);
    EXPECT_EQ(fs::status(wrapper / "Contents/MacOS/runner").permissions(), fs::perms{0755});
    EXPECT_THAT(reasons(wrapper), IsEmpty());
}

TEST_F(CloneRefreshTest, WhatASelfContainedCloneRunsBesideItsRunnerIsKeptUp) {
    const fs::path installed = home / "installed/quorvel-runner";
    write(installed, read(runnerProgram()));
    write(home / "installed" / webHostModule, "module");
    write(home / "installed" / statusItemProgram, "program");
    const CloneRefresh contained(installed, true);
    WrapperFactory::Request app = appRequest();
    app.displayName = "App";
    app.menuBarIcon = true;
    const fs::path web = make(webRequest());
    const fs::path clone = make(app);
    for (const auto& [wrapper, part, bytes] :
         {std::tuple(web, fs::path(webHostOf(web)), "module"),
          std::tuple(clone, fs::path(statusItemOf(clone)), "program")}) {
        const auto found = [&, wrapper = wrapper] {
            return contained.reasonsFor(*InstanceRegistry().record(wrapper));
        };
        for (const char* old : {"", "other!", "OTHERS!"}) {
            fs::remove(part);
            if (*old != '\0') {
                write(part, old);
            }
            EXPECT_THAT(found(), ElementsAre(StaleReason::runner)) << part << old;
            EXPECT_THAT(reasons(wrapper), IsEmpty()) << "it need not contain it";
            EXPECT_TRUE(contained.refresh(wrapper).isChanged);
            EXPECT_EQ(read(part), bytes);
            EXPECT_THAT(found(), IsEmpty());
            EXPECT_FALSE(contained.refresh(wrapper).isChanged);
        }
    }
}

TEST_F(CloneRefreshTest, WhereItsProgramsAreIsNotedIfItIsAnUnusualPlace) {
    const auto installedIn = [&](const std::string& folder) {
        write(home / (folder + "/quorvel-runner"), read(runnerProgram()));
        return CloneRefresh(home / (folder + "/quorvel-runner"));
    };
    const auto noted = [](const fs::path& wrapper) {
        return WrapperNotes::read(wrapper)->helpers.value_or("none");
    };
    const fs::path wrapper = make(webRequest());
    EXPECT_EQ(noted(wrapper), "none");
    EXPECT_EQ(read(wrapper / "Contents/Resources/wrapper.json").find("helpers"), std::string::npos);
    for (const std::string folder : {"one/libexec/quorvel", "other/libexec/quorvel"}) {
        const CloneRefresh moved = installedIn(folder);
        EXPECT_THAT(moved.reasonsFor(*InstanceRegistry().record(wrapper)),
                    ElementsAre(StaleReason::runner));
        EXPECT_TRUE(moved.refresh(wrapper).isChanged);
        EXPECT_EQ(noted(wrapper), home / folder);
        EXPECT_FALSE(moved.refresh(wrapper).isChanged);
    }
    (void)editClone(wrapper, [](CloneSettings& s) { s.config.url = "https://b.test"; });
    EXPECT_EQ(noted(wrapper), home / "other/libexec/quorvel") << "it has the same runner";
    // Names that can't be noted, and folders that are none of an installation.
    for (const std::string folder : {"a\xff/libexec/quorvel", "build/bin"}) {
        EXPECT_TRUE(installedIn(folder).refresh(wrapper).isChanged);
        EXPECT_EQ(noted(wrapper), "none");
        (void)installedIn("one/libexec/quorvel").refresh(wrapper);
    }
}

TEST_F(CloneRefreshTest, ARunnerOfTheSameSizeIsCompared) {
    const fs::path wrapper = make(webRequest());
    const fs::path runner = wrapper / "Contents/MacOS/runner";
    std::string bytes = read(runner);
    for (const std::size_t place : {std::size_t{0}, bytes.size() - 1}) {
        bytes[place] = static_cast<char>(bytes[place] ^ 1);
        write(runner, bytes);
        EXPECT_THAT(reasons(wrapper), ElementsAre(StaleReason::runner)) << place;
        bytes[place] = static_cast<char>(bytes[place] ^ 1);
    }
    write(runner, bytes);
    EXPECT_THAT(reasons(wrapper), IsEmpty());
}

TEST_F(CloneRefreshTest, AChangeThatWasCutOffMeanwhileIsPutRight) {
    WrapperFactory::Request second = webRequest();
    second.displayName = "Second";
    for (const fs::path& wrapper : {make(webRequest()), make(second)}) {
        write(wrapper / "Contents/MacOS/runner", "an older one");
    }
    EXPECT_TRUE(refresh.refresh(home / "Applications/Work.app").isChanged);
    // A deletion that hides the wrapper, while its data is still there.
    write(home / "QuorvelInstances/Second/file", "data");
    {
        StagedChange change(home / "Applications");
        ChangeJournal{.wrapper = "Second.app",
                      .home = home / "QuorvelInstances/Second",
                      .device = std::to_string(identityOf(home.path())->device)}
            .keepWith(change);
        ASSERT_TRUE(change.withdraw("Second.app", "Second.app",
                                    *identityOf(home / "Applications/Second.app")));
        change.keep();
    }
    EXPECT_TRUE(refresh.refresh(home / "Applications/Second.app").isChanged);
}

TEST_F(CloneRefreshTest, ARefreshThroughALinkLeavesItsFolderToBePutRightLater) {
    WrapperFactory::Request second = webRequest();
    second.displayName = "Second";
    second.outputDir = home / "Elsewhere";
    fs::create_directory(home / "Elsewhere");
    (void)make(webRequest());
    fs::create_directory_symlink(make(second), home / "Applications/Link.app");
    {
        StagedChange change(home / "Applications");
        change.keep();
    }
    ASSERT_EQ(std::distance(fs::directory_iterator(home / "Applications"), {}), 3);
    (void)refresh.refresh(home / "Applications/Link.app");
    (void)refresh.refresh(home / "Applications/Work.app");
    EXPECT_EQ(std::distance(fs::directory_iterator(home / "Applications"), {}), 2);
}

TEST_F(CloneRefreshTest, TheMenuIsKeptUpForEachClone) {
    WrapperFactory::Request second = webRequest();
    second.displayName = "Second";
    second.customIcon = writePicture("chosen.png", 64);
    const fs::path wrapper = make(second);
    (void)make(webRequest());
    const auto pictureOf = [&] {
        return home / ".local/share/icons/hicolor/48x48/apps" /
               (publishedEntryOf(wrapper.string())->entry.icon + ".png");
    };
    write(pictureOf(), "not drawn again");
    for (const char* name : {"Work", "Second"}) {
        const fs::path clone = home / "Applications" / (std::string(name) + ".app");
        write(clone / "Contents/MacOS/runner", "an older one");
        const auto before = publishedEntryOf(clone.string())->written;
        EXPECT_TRUE(refresh.refresh(clone).isChanged);
        EXPECT_GT(publishedEntryOf(clone.string())->written, before);
    }
    EXPECT_EQ(publishedMenuEntries().size(), 2U);
    EXPECT_EQ(read(pictureOf()), "not drawn again") << "the icon is the same";
}

TEST_F(CloneRefreshTest, DesktopsLearnOnceWhatAllClonesOpenAlsoIfOneFails) {
    if (!hasMenu()) {
        GTEST_SKIP() << "this system has no menu";
    }
    const DesktopApps apps;
    apps.addProgram("app", helperProgram());
    apps.addScript("update-desktop-database", "echo \"$1\" >> '" + (home / "runs").string() + "'");
    const auto runs = [&] {
        const std::string lines = read(home / "runs");
        return std::count(lines.begin(), lines.end(), '\n');
    };
    WrapperFactory::Request request;
    request.targetApp = apps.addEntry("app", "app", "MimeType=text/x-quorvel;\n");
    request.openWithPassthrough = true;
    for (const char* name : {"A", "B", "C"}) {
        request.displayName = name;
        write(make(request) / "Contents/MacOS/runner", "an older one");
    }
    ASSERT_EQ(runs(), 3) << "one for each that is made";
    {
        const CloneRefresh each(runnerProgram());
        EXPECT_TRUE(each.refresh(home / "Applications/A.app").isChanged);
        EXPECT_THROW((void)each.refresh(home / "Applications/None.app"), Error);
        EXPECT_TRUE(each.refresh(home / "Applications/B.app").isChanged);
        EXPECT_TRUE(each.refresh(home / "Applications/C.app").isChanged);
        EXPECT_EQ(runs(), 3);
    }
    EXPECT_EQ(runs(), 4);
    EXPECT_EQ(read(home / "runs").find(apps.at("share/applications").string()), 0U);
    (void)CloneRefresh(runnerProgram()).refresh(home / "Applications/A.app");
    EXPECT_EQ(runs(), 4) << "nothing has changed";
}

TEST_F(CloneRefreshTest, TheTargetsNewIconIsTakenWithTheClonesLabel) {
    const fs::path wrapper = make(appRequest());
    setLabel(wrapper, "A");
    const std::string old = iconIn(wrapper);
    changeTargetsIcon();
    EXPECT_THAT(reasons(wrapper), ElementsAre(StaleReason::icon));
    EXPECT_TRUE(refresh.refresh(wrapper).isChanged);
    EXPECT_NE(iconIn(wrapper), old);
    EXPECT_NE(iconIn(wrapper), fileHash(home / "Thing.app/Contents/Resources/Icon.icns"));
    EXPECT_THAT(reasons(wrapper), IsEmpty());
}

TEST_F(CloneRefreshTest, AChosenIconStays) {
    WrapperFactory::Request request = appRequest();
    request.customIcon = writePicture("chosen.png", 200, 0xFF30A030U);
    request.hideWrapperIcon = true;
    const fs::path wrapper = make(request);
    const std::string chosen = iconIn(wrapper);
    changeTargetsIcon();
    EXPECT_THAT(reasons(wrapper), IsEmpty());
    write(wrapper / "Contents/MacOS/runner", "an older one");
    EXPECT_TRUE(refresh.refresh(wrapper).isChanged);
    EXPECT_EQ(iconIn(wrapper), chosen);
    EXPECT_THAT(read(wrapper / "Contents/Info.plist"), ::testing::HasSubstr("LSUIElement"));
}

TEST_F(CloneRefreshTest, AnIconThatTheUserReplacedStays) {
    const fs::path wrapper = make(appRequest());
    write(wrapper / "Contents/Resources/AppIcon.icns", "the user's own");
    changeTargetsIcon();
    EXPECT_THAT(reasons(wrapper), IsEmpty());
    write(wrapper / "Contents/MacOS/runner", "an older one");
    (void)refresh.refresh(wrapper);
    EXPECT_EQ(read(wrapper / "Contents/Resources/AppIcon.icns"), "the user's own");
}

TEST_F(CloneRefreshTest, TheEnginesArgumentsAreTakenUnlessOthersWereTyped) {
    const WrapperFactory::Request request = appRequest();
    for (const bool typed : {false, true}) {
        WrapperFactory::Request own = request;
        if (typed) {
            own.extraArgs = {"--mine"};
            own.displayName = "Typed";
        }
        const fs::path wrapper = make(own);
        fs::create_directories(home / "Thing.app/Contents/Frameworks/Electron Framework.framework");
        EXPECT_EQ(reasons(wrapper).size(), typed ? 0U : 1U);
        EXPECT_EQ(refresh.refresh(wrapper).isChanged, !typed);
        const auto arguments = InstanceRegistry().record(wrapper)->config.extraArgs;
        EXPECT_THAT(arguments,
                    ElementsAre(typed ? "--mine" : "--user-data-dir={{instanceHome}}/QuorvelData"));
        fs::remove_all(home / "Thing.app/Contents/Frameworks");
    }
}

TEST_F(CloneRefreshTest, AnUpdateInProgressTakesNoArgumentsAway) {
    const WrapperFactory::Request request = appRequest();
    const fs::path engine = home / "Thing.app/Contents/Frameworks/Electron Framework.framework";
    fs::create_directories(engine);
    const fs::path wrapper = make(request);
    const auto arguments = [&] { return InstanceRegistry().record(wrapper)->config.extraArgs; };
    const auto before = arguments();
    ASSERT_EQ(before.size(), 1U);
    fs::remove_all(engine);
    EXPECT_THAT(reasons(wrapper), IsEmpty());
    EXPECT_FALSE(refresh.refresh(wrapper).isChanged);
    (void)editClone(wrapper, [](CloneSettings& s) { s.config.environment["A"] = "1"; });
    EXPECT_EQ(arguments(), before);
    (void)editClone(wrapper, [](CloneSettings& s) { s.restoresArguments = true; });
    EXPECT_THAT(arguments(), IsEmpty()) << "that was asked for";
}

TEST_F(CloneRefreshTest, ArgumentsThatTheUserChangedStayAndAreNamed) {
    const WrapperFactory::Request request = appRequest();
    fs::create_directories(home / "Thing.app/Contents/Frameworks/Electron Framework.framework");
    const fs::path wrapper = make(request);
    InstanceConfig config = InstanceRegistry().record(wrapper)->config;
    const auto engines = config.extraArgs;
    config.extraArgs = {"--mine"};
    write(wrapper / "Contents/Resources/instance.json", config.json());
    EXPECT_THAT(reasons(wrapper), IsEmpty());
    write(wrapper / "Contents/MacOS/runner", "an older one");
    const auto arguments = [&] { return InstanceRegistry().record(wrapper)->config.extraArgs; };
    for (const char* value : {"1", "2"}) {
        (void)refresh.refresh(wrapper);
        const ChangedClone changed =
            editClone(wrapper, [&](CloneSettings& s) { s.config.environment["A"] = value; });
        EXPECT_THAT(changed.kept, ElementsAre("the arguments for the app"));
        EXPECT_THAT(arguments(), ElementsAre("--mine"));
    }
    const ChangedClone restored = editClone(wrapper, [](CloneSettings& s) {
        s.arguments = ArgumentSource::engine;
        s.restoresArguments = true;
    });
    EXPECT_THAT(restored.kept, IsEmpty());
    EXPECT_EQ(arguments(), engines);
    EXPECT_THAT(setLabel(wrapper, "A").kept, IsEmpty()) << "they are the engine's again";
}

TEST_F(CloneRefreshTest, AnIconThatCantBeDrawnIsTriedOnce) {
    const DesktopApps apps;
    apps.addProgram("app", helperProgram());
    fs::rename(writePicture("icon.png", 48), home / "good.png");
    const fs::path icon = apps.addIcon("48x48", "app.png", read(home / "good.png"));
    WrapperFactory::Request request;
    request.displayName = "Work";
    request.targetApp = apps.addEntry("app", "app", "Icon=app\n");
    const fs::path wrapper = make(request);
    const std::string old = iconIn(wrapper);
    EXPECT_NE(old, "");
    write(icon, "no picture");
    EXPECT_THAT(reasons(wrapper), ElementsAre(StaleReason::icon));
    (void)refresh.refresh(wrapper);
    EXPECT_EQ(iconIn(wrapper), old);
    EXPECT_THAT(reasons(wrapper), IsEmpty());
    WrapperFactory::Request another = request;
    another.displayName = "Later";
    EXPECT_THAT(reasons(make(another)), IsEmpty());
    write(icon, read(home / "good.png"));
    EXPECT_THAT(reasons(wrapper), ElementsAre(StaleReason::icon)) << "it can be drawn again";
}

TEST_F(CloneRefreshTest, ACloneWhoseTargetIsGoneGetsTheRunnerAndKeepsTheRest) {
    const fs::path wrapper = make(appRequest());
    const std::string icon = iconIn(wrapper);
    fs::remove_all(home / "Thing.app");
    write(wrapper / "Contents/MacOS/runner", "an older one");
    EXPECT_TRUE(refresh.refresh(wrapper).isChanged);
    EXPECT_EQ(fileHash(wrapper / "Contents/MacOS/runner"), fileHash(runnerProgram()));
    EXPECT_EQ(iconIn(wrapper), icon);
}

TEST_F(CloneRefreshTest, AWrapperWithoutNotesKeepsWhatItsConfigurationCantHold) {
    WrapperFactory::Request request = appRequest();
    request.customIcon = writePicture("chosen.png", 200, 0xFF30A030U);
    request.hideWrapperIcon = true;
    request.extraArgs = {"--mine"};
    const fs::path wrapper = make(request);
    forgetNotes(wrapper);
    auto before = treeOf(wrapper);
    write(wrapper / "Contents/MacOS/runner", "an older one");
    EXPECT_TRUE(refresh.refresh(wrapper).isChanged);
    auto after = treeOf(wrapper);
    after.erase("Contents/Resources/wrapper.json");
    EXPECT_TRUE(after == before);
}

TEST_F(CloneRefreshTest, ARunnerThatCantBeReadIsAnError) {
    EXPECT_THROW((void)CloneRefresh(home / "none"), Error);
}

} // namespace
} // namespace quorvel
