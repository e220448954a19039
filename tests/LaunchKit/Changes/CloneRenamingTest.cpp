#include "LaunchKit/Changes/CloneRenaming.h"

#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "Platform/entries/MenuEntry.h"
#include "Platform/files/PropertyListFile.h"
#include "Platform/homes/IsolatedEnvironment.h"
#include "tests/LaunchKit/Changes/ChangedClones.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;
namespace fs = std::filesystem;

class CloneRenamingTest : public ::testing::Test, protected ChangedClones {
protected:
    [[nodiscard]] fs::path data(const std::string& name) const {
        return home / "QuorvelInstances" / name;
    }

    // Renames the clone and returns why that failed; empty if it didn't.
    [[nodiscard]] std::string refusal(const CloneRenaming& renaming) const {
        const auto before = treeOf(home.path());
        try {
            (void)renameClone(home / "Applications/Work.app", renaming);
            return {};
        } catch (const Error& error) {
            EXPECT_TRUE(treeOf(home.path()) == before);
            return error.what();
        }
    }
};

TEST_F(CloneRenamingTest, TheWrapperAndTheDisplayNameGetTheNewName) {
    const fs::path wrapper = make(webRequest());
    write(data("Work") / "file", "data");
    const InstanceConfig old = InstanceRegistry().record(wrapper)->config;
    const ChangedClone changed = renameClone(wrapper, {.name = " Office "});
    const fs::path renamed = home / "Applications/Office.app";
    EXPECT_EQ(changed.record.bundleURL, renamed);
    EXPECT_FALSE(fs::exists(wrapper));
    InstanceConfig config = InstanceRegistry().record(renamed)->config;
    EXPECT_EQ(config.displayName, "Office");
    config.displayName = old.displayName;
    EXPECT_EQ(config.json(), old.json()) << "its data and identifier stay";
    EXPECT_EQ(readPropertyList(renamed / "Contents/Info.plist")->at("CFBundleName"),
              PropertyListValue("Office"));
    EXPECT_EQ(read(data("Work") / "file"), "data");
    EXPECT_EQ(std::distance(fs::directory_iterator(home / "Applications"), {}), 1);
}

TEST_F(CloneRenamingTest, TheMenuShowsTheNewNameAlone) {
    if (!hasMenu()) {
        GTEST_SKIP() << "this system has no such menu";
    }
    (void)renameClone(make(webRequest()), {.name = "Office"});
    const auto entries = publishedMenuEntries();
    ASSERT_EQ(entries.size(), 1U);
    EXPECT_EQ(entries.front().entry.name, "Office");
    EXPECT_THAT(entries.front().entry.exec, HasSubstr("Office.app"));
}

TEST_F(CloneRenamingTest, TheDataMovesIfAsked) {
    const fs::path wrapper = make(webRequest());
    write(data("Work") / "file", "data");
    const ChangedClone changed = renameClone(wrapper, {.name = "Office", .movesData = true});
    EXPECT_EQ(changed.record.config.instanceHome, "~/QuorvelInstances/Office");
    EXPECT_EQ(read(data("Office") / "file"), "data");
    EXPECT_FALSE(fs::is_symlink(data("Office")));
    EXPECT_FALSE(fs::exists(fs::symlink_status(data("Work"))));
}

TEST_F(CloneRenamingTest, TheConfigurationLeadsToTheDataHoweverItWasWritten) {
    const std::string folder = (home / "D").string();
    fs::create_directory(home / "D");
    fs::create_directory_symlink("D", home / "link");
    const std::pair<std::string, std::string> homes[] = {
        {"~/D/Work", "~/D/Office"},         {"~/D/Work/", "~/D/Office"},
        {"~/D/Work/.", folder + "/Office"}, {"~/D/x/../Work", "~/D/x/../Office"},
        {"~/link/Work", "~/link/Office"},   {folder + "/Work", folder + "/Office"},
    };
    fs::create_directory(home / "D/x");
    for (const auto& [before, after] : homes) {
        InstanceConfig config = minimalConfig();
        config.instanceHome = before;
        const fs::path wrapper = makeWrapper(home / "Applications/Work.app", config);
        write(home / "D/Work/file", before);
        const ChangedClone changed = renameClone(wrapper, {.name = "Office", .movesData = true});
        EXPECT_EQ(changed.record.config.instanceHome, after) << before;
        EXPECT_EQ(read(fs::path(changed.record.config.resolvedHome()) / "file"), before);
        fs::remove_all(home / "D/Office");
        fs::remove_all(home / "Applications");
    }
}

TEST_F(CloneRenamingTest, ACloneWithoutDataIsRenamedAlone) {
    const ChangedClone changed =
        renameClone(make(webRequest()), {.name = "Office", .movesData = true});
    EXPECT_EQ(changed.record.config.instanceHome, "~/QuorvelInstances/Work");
    EXPECT_FALSE(fs::exists(data("Office")));
}

// The mark would be followed to the old name.
TEST_F(CloneRenamingTest, DataThatAnInterruptedCopyMarkedIsKept) {
    const fs::path wrapper = make(webRequest());
    write(data("Work") / ".quorvel-copied", "");
    (void)renameClone(wrapper, {.name = "Office"});
    EXPECT_FALSE(fs::exists(data("Work") / ".quorvel-copied"));
    EXPECT_TRUE(fs::exists(data("Work")));
}

TEST_F(CloneRenamingTest, DataInUseDoesNotMove) {
    const fs::path wrapper = make(webRequest());
    const auto lock = lockHome(InstanceRegistry().record(wrapper)->config);
    EXPECT_NE(refusal({.name = "Office", .movesData = true}), "");
    EXPECT_EQ(refusal({.name = "Office"}), "") << "only the data is in use";
}

TEST_F(CloneRenamingTest, DataThatIsNotTheClonesAloneDoesNotMove) {
    (void)make(webRequest());
    write(data("Work") / "file", "data");
    InstanceConfig other = minimalConfig("Other");
    other.instanceHome = "~/QuorvelInstances/Work";
    makeWrapper(home / "Applications/Other.app", other);
    EXPECT_THAT(refusal({.name = "Office", .movesData = true}), HasSubstr("can’t be moved"));
}

TEST_F(CloneRenamingTest, DataBehindALinkOrInTheWayDoesNotMove) {
    (void)make(webRequest());
    write(home / "elsewhere/file", "data");
    fs::create_directory(home / "QuorvelInstances");
    fs::create_directory_symlink(home / "elsewhere", data("Work"));
    EXPECT_THAT(refusal({.name = "Office", .movesData = true}), HasSubstr("symbolic link"));
    fs::remove(data("Work"));
    write(data("Work") / "file", "data");
    write(data("Office") / "file", "someone's");
    EXPECT_THAT(refusal({.name = "Office", .movesData = true}), HasSubstr("“Office” couldn’t be"));
}

TEST_F(CloneRenamingTest, ANameThatIsTakenOrCantBeUsedIsRefused) {
    (void)make(webRequest());
    makeWrapper(home / "Applications/Taken.app", "Taken");
    write(home / "Applications/Mine.app/file", "x");
    for (const char* name : {"Taken", "Mine", "", "a/b", "..", "\x01"}) {
        EXPECT_NE(refusal({.name = name}), "") << name;
    }
}

TEST_F(CloneRenamingTest, TheSameNameChangesNothing) {
    const fs::path wrapper = make(webRequest());
    EXPECT_FALSE(renameClone(wrapper, {.name = "Work"}).isChanged);
    EXPECT_TRUE(InstanceRegistry().record(wrapper));
}

TEST_F(CloneRenamingTest, ClonesThatOpenTheirLinksInItAreNamed) {
    const fs::path wrapper = make(webRequest());
    InstanceConfig other = minimalConfig("Mail");
    other.links = wrapper.string();
    makeWrapper(home / "Applications/Mail.app", other);
    EXPECT_THAT(renameClone(wrapper, {.name = "Office"}).warnings,
                ElementsAre(HasSubstr("“Mail” opens its links in this clone")));
}

// It is named after the data folder.
TEST_F(CloneRenamingTest, TheTemporaryFolderOfTheOldDataGoes) {
    const fs::path wrapper = make(appRequest());
    fs::create_directories(data("Work"));
    const Environment isolated = isolatedEnvironment(data("Work"), currentEnvironment());
    if (!isolated.contains("TMPDIR")) {
        GTEST_SKIP() << "this system has none";
    }
    ASSERT_TRUE(fs::exists(isolated.at("TMPDIR")));
    (void)renameClone(wrapper, {.name = "Office", .movesData = true});
    EXPECT_FALSE(fs::exists(isolated.at("TMPDIR")));
}

TEST_F(CloneRenamingTest, ClonesThatSpellItsPathDifferentlyAreNamedToo) {
    const fs::path wrapper = make(webRequest());
    fs::create_directory_symlink(home / "Applications", home / "Apps");
    for (const auto& [name, links] :
         {std::pair("Mail", (home / "Apps" / wrapper.filename()).string()),
          std::pair("Chat", "~/Applications/" + wrapper.filename().string()),
          std::pair("News", (home / "Applications/Another.app").string()),
          std::pair("Maps", std::string("inside"))}) {
        InstanceConfig other = minimalConfig(name);
        other.links = links;
        makeWrapper(home / "Applications" / (std::string(name) + ".app"), other);
    }
    EXPECT_THAT(renameClone(wrapper, {.name = "Office"}).warnings,
                UnorderedElementsAre(HasSubstr("“Mail” opens"), HasSubstr("“Chat” opens")));
}

} // namespace
} // namespace quorvel
