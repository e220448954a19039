#include "LaunchKit/InstanceRecord.h"
#include "Platform/processes/Process.h"
#include "QuorvelApp/widgets/ProgressSheet.h"
#include "tests/QuorvelApp/WindowFixture.h"
#include "tests/support/DesktopApps.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <sqlite3.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using ::testing::HasSubstr;
using ::testing::StartsWith;

class SeedBoxTest : public WindowTest {
protected:
    SeedBoxTest() {
        stubs.readsBundles = true;
        install("vlc");
        install("mystery");
        write(home / ".config/vlc/vlcrc", "12345");
        write(home / ".config/mystery/file", "1");
    }

    void install(const std::string& name) {
        const fs::path program = apps.at("opt/" + name);
        write(program, read(helperProgram()));
        makeExecutable(program);
        stubs.installed.push_back(
            {.url = apps.addEntry(name, program.string()), .name = name, .bundleId = name});
    }

    void openWith(const QString& app) {
        open();
        openSheet();
        chooseApp(app);
        button(u"Advanced options"_s)->click();
    }

    void chooseApp(const QString& app) {
        choose(app);
        auto& session = window->findChild<NewCloneView*>()->session();
        ASSERT_TRUE(eventually(
            [&] { return session.form().strategyReason.find(" → ") != std::string::npos; }));
    }

    QCheckBox* box() { return checkBox(window.get(), u"Start with the original's data"_s); }
    NewCloneView* sheet() { return window->findChild<NewCloneView*>(); }
    [[nodiscard]] fs::path copyOf(const std::string& name) const {
        return home / "QuorvelInstances" / name / ".config/vlc/vlcrc";
    }
    void expectNothingMade() {
        for (const fs::path& place : {folder, home / "QuorvelInstances"}) {
            EXPECT_TRUE(!fs::exists(place) || fs::is_empty(place)) << place;
        }
        EXPECT_EQ(read(home / ".config/vlc/vlcrc"), "12345");
    }

    DesktopApps apps{};
};

TEST_F(SeedBoxTest, ShowsOnlyForAppsWhoseDataIsKnownAndIsNotTicked) {
    openWith(u"mystery"_s);
    EXPECT_FALSE(box()->isVisible());
    chooseApp(u"vlc"_s);
    EXPECT_TRUE(box()->isVisible());
    EXPECT_FALSE(box()->isChecked());
    box()->setChecked(true);
    button(u"Command"_s)->click();
    EXPECT_FALSE(box()->isVisible());
    button(u"App"_s)->click();
    chooseApp(u"mystery"_s);
    EXPECT_FALSE(box()->isVisible());
    chooseApp(u"vlc"_s);
    EXPECT_FALSE(box()->isChecked()) << "another app is another question";
}

TEST_F(SeedBoxTest, IsHiddenWhereThereIsNoData) {
    fs::remove_all(home / ".config/vlc");
    openWith(u"vlc"_s);
    EXPECT_FALSE(box()->isVisible());
}

TEST_F(SeedBoxTest, TickedTheCloneStartsWithACopy) {
    openWith(u"vlc"_s);
    box()->setChecked(true);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return sheet() == nullptr; }));
    EXPECT_EQ(read(copyOf("vlc (2)")), "12345");
    EXPECT_EQ(read(home / ".config/vlc/vlcrc"), "12345") << "never moved";
    EXPECT_THAT(stubs.model().statusMessage().value_or(""), StartsWith("1 file with 5 bytes was "));
    EXPECT_EQ(stubs.workspace->opened.size(), 1U) << "launched, as the box says";
}

TEST_F(SeedBoxTest, IsNotLaunchedBeforeTheUserKnowsWhatOnlyTheKeyringDecrypts) {
    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open((home / ".config/vlc/Cookies").c_str(), &database), SQLITE_OK);
    ASSERT_EQ(sqlite3_exec(database,
                           "create table cookies(name, encrypted_value blob);"
                           "insert into cookies values('a', x'763131aa');",
                           nullptr, nullptr, nullptr),
              SQLITE_OK);
    sqlite3_close(database);
    openWith(u"vlc"_s);
    box()->setChecked(true);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return sheet() == nullptr; }));
    EXPECT_THAT(stubs.model().statusMessage().value_or(""),
                HasSubstr("1 cookie can only be decrypted with the keyring "));
    EXPECT_TRUE(stubs.workspace->opened.empty());
}

TEST_F(SeedBoxTest, UntickedNothingIsCopied) {
    stubs.create = [&](const auto& request) { return addWrapper(request.displayName); };
    openWith(u"vlc"_s);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return sheet() == nullptr; }));
    EXPECT_FALSE(fs::exists(copyOf("vlc (2)")));
    EXPECT_FALSE(stubs.model().statusMessage());
}

TEST_F(SeedBoxTest, ARunningOriginalIsAnErrorAndTheSheetStays) {
    openWith(u"vlc"_s);
    box()->setChecked(true);
    Environment environment = currentEnvironment();
    environment["HOME"] = home.path();
    Process original = Process::run(
        {.executable = apps.at("opt/vlc"), .arguments = {"wait"}, .environment = environment});
    ASSERT_TRUE(waitUntil([&] { // until it has become that program
        std::error_code code;
        const auto program =
            fs::read_symlink("/proc/" + std::to_string(original.identifier()) + "/exe", code);
        return program == apps.at("opt/vlc");
    }));
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
    EXPECT_TRUE(shown(u"“vlc” is running. Close it first, so that its data can be copied."_s));
    original.sendSignal(SIGKILL);
    original.waitUntilExit();
    expectNothingMade();
    button(u"OK"_s)->click();
    EXPECT_TRUE(box()->isChecked());
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return sheet() == nullptr; }));
    EXPECT_EQ(read(copyOf("vlc (2)")), "12345");
}

TEST_F(SeedBoxTest, CancellingTheCopyLeavesNothingBehindAndKeepsTheSheet) {
    openWith(u"vlc"_s);
    box()->setChecked(true);
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    ASSERT_NE(window->findChild<ProgressSheet*>(), nullptr);
    button(u"Cancel"_s)->click();
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return window->findChild<ProgressSheet*>() == nullptr; }));
    EXPECT_FALSE(stubs.model().lastError());
    ASSERT_NE(sheet(), nullptr);
    EXPECT_TRUE(button(u"Create Shortcut"_s)->isEnabled());
    expectNothingMade();
}

TEST_F(SeedBoxTest, AnErrorThatComesBeforeTheCancellationIsStillReported) {
    openWith(u"vlc"_s);
    box()->setChecked(true);
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    button(u"Cancel"_s)->click();
    fs::remove_all(home / ".config/vlc");
    stubs.tasks->release();
    EXPECT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
}

TEST_F(SeedBoxTest, ACloneThatWasMadeSinceIsNotReplaced) {
    openWith(u"vlc"_s);
    box()->setChecked(true);
    const fs::path wrapper = addWrapper("vlc (2)");
    const auto before = treeOf(wrapper);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
    EXPECT_THAT(stubs.model().lastError().value_or(""), HasSubstr("“vlc (2)” already exists at "));
    EXPECT_EQ(treeOf(wrapper), before);
    EXPECT_FALSE(fs::exists(copyOf("vlc (2)")));
}

} // namespace
} // namespace quorvel::testing
