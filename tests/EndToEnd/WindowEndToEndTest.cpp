#include "LaunchKit/Icons/IcnsWriter.h"
#include "tests/EndToEnd/Desktop.h"
#include "tests/EndToEnd/Person.h"
#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/Waiting.h"

#include <array>
#include <csignal>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

constexpr auto runningGreen = "#30C057"; // of the light look

/// The installed program, in a home with an app or two, used as a person would use it.
class WindowEndToEndTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        if (Desktop::missingPrograms().empty()) {
            desktop = std::make_unique<Desktop>();
        }
    }
    static void TearDownTestSuite() { desktop.reset(); }

    void SetUp() override {
        const std::vector<std::string> missing = Desktop::missingPrograms();
        if (!missing.empty()) {
            GTEST_SKIP() << missing.front() << " is not installed";
        }
        ASSERT_TRUE(desktop) << "the desktop did not come up";
        // Writes what tells one home from another, and runs until it is ended.
        makeScriptedAppBundle(applications / "Chat.app",
                              "mkdir -p \"$HOME/Documents\"\n"
                              "echo \"$HOME\" > \"$HOME/account\"\n"
                              "exec sleep 600",
                              {{"CFBundleIconFile", "AppIcon"}});
        write(iconOf(applications / "Chat.app"), icnsFile(std::array{icnsChunk(chatIcon(512))}));
        makeScriptedAppBundle(applications / "Notes.app", "exit 0");
    }

    void TearDown() override {
        if (program && program->isRunning()) {
            program->terminate();
            program->waitUntilExit();
        }
    }

    void open() {
        Process::Options options;
        options.executable = QUORVEL_APP_PROGRAM;
        options.environment = quorvelctl.environment;
        for (const char* name : {"DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR",
                                 "QT_QPA_PLATFORM", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON"}) {
            (*options.environment)[name] = currentEnvironment().at(name);
        }
        program.emplace(Process::run(options));
        ASSERT_TRUE(waitFor([&] { return person.see(Control::any, "Quorvel").active; }));
    }

    void openSheet(const std::string& kind) {
        Person::press("ctrl+n");
        (void)person.see(Control::button, "Create Shortcut");
        person.click(Control::any, kind);
    }

    // Fills in the name, and has nothing launched.
    void nameIt(const std::string& name) {
        person.fill("Name", name);
        if (person.see(Control::checkBox, "Launch after creating").checked) {
            person.click(Control::checkBox, "Launch after creating");
        }
    }

    void create() {
        person.click(Control::button, "Create Shortcut");
        person.seeNoMore(Control::any, "New Shortcut"); // the sheet
    }

    [[nodiscard]] nlohmann::json configuration(const std::string& name) const {
        return nlohmann::json::parse(
            read(wrapper(name) / "Contents" / "Resources" / "instance.json"));
    }

    [[nodiscard]] fs::path wrapper(const std::string& name) const {
        return applications / (name + ".app");
    }

    [[nodiscard]] static fs::path iconOf(const fs::path& bundle) {
        return bundle / "Contents" / "Resources" / "AppIcon.icns";
    }

    static inline std::unique_ptr<Desktop> desktop;
    QuorvelctlInAHome quorvelctl;
    fs::path applications = quorvelctl.home / "Applications";
    Person person{"quorvel"};
    std::optional<Process> program{};
};

TEST_F(WindowEndToEndTest, MakesACloneWithABadgeLaunchesItAndShowsThatItRuns) {
    open();
    (void)person.see(Control::any, "No clones yet");
    person.click(Control::button, "New Clone");
    person.click(Control::row, "Chat");
    EXPECT_TRUE(waitFor([&] { return person.see(Control::field, "Name").text == "Chat (2)"; }));
    person.fill("Name", "Chat Work");
    person.click(Control::any, "Advanced options");
    const int footer = person.see(Control::button, "Cancel").y - 20;
    person.scrollTo(Control::field, "Icon label", person.see(Control::field, "Name"), footer);
    person.fill("Icon label", "WORK");
    create();

    EXPECT_EQ(configuration("Chat Work")["iconLabel"]["text"], "WORK");
    EXPECT_NE(read(iconOf(wrapper("Chat Work"))), "");
    EXPECT_NE(read(iconOf(wrapper("Chat Work"))), read(iconOf(applications / "Chat.app")));
    const fs::path account = quorvelctl.data("Chat Work") / "account";
    EXPECT_TRUE(waitFor([&] {
        return read(account) == quorvelctl.data("Chat Work").string() + "\n";
    })) << "the app writes into the clone's home: "
        << read(account);
    EXPECT_FALSE(fs::exists(quorvelctl.home / "account"));

    const Element row = person.see(Control::row, "Chat Work, Running");
    EXPECT_TRUE(waitFor([&] { return Person::hasColor(row, runningGreen); })) << "the green dot";
    ::kill(runnerOf(wrapper("Chat Work")).value(), SIGTERM);
    EXPECT_TRUE(waitFor([&] { return !runnerOf(wrapper("Chat Work")); }));
    Person::press("ctrl+r");
    (void)person.see(Control::row, "Chat Work");
    EXPECT_TRUE(waitFor([&] { return !Person::hasColor(row, runningGreen); }));
}

TEST_F(WindowEndToEndTest, MakesAWebAFileAndACommandShortcut) {
    write(quorvelctl.home / "Tax 2026.txt", "numbers");
    open();

    openSheet("Web App");
    person.fill("Website URL", "mail.test/inbox");
    nameIt("Mail");
    create();
    (void)person.see(Control::row, "Mail");
    EXPECT_EQ(configuration("Mail")["kind"], "web");
    EXPECT_EQ(configuration("Mail")["url"], "mail.test/inbox");

    openSheet("File / Folder");
    person.click(Control::button, "Browse…");
    (void)person.see(Control::button, "Choose");
    person.type((quorvelctl.home / "Tax 2026.txt").string());
    Person::press("Return");
    person.seeNoMore(Control::button, "Choose");
    nameIt("Taxes");
    create();
    (void)person.see(Control::row, "Taxes");
    EXPECT_EQ(configuration("Taxes")["kind"], "file");
    EXPECT_EQ(configuration("Taxes")["openPath"], (quorvelctl.home / "Tax 2026.txt").string());

    openSheet("Command");
    person.fill("Command", "/usr/bin/printf");
    person.fill("Arguments", "hello %s you");
    nameIt("Greet");
    create();
    (void)person.see(Control::row, "Greet");
    EXPECT_EQ(configuration("Greet")["kind"], "command");
    EXPECT_EQ(configuration("Greet")["commandPath"], "/usr/bin/printf");
    EXPECT_EQ(configuration("Greet")["commandArgs"], nlohmann::json({"hello", "%s", "you"}));
}

TEST_F(WindowEndToEndTest, MovesAClonesFilesIntoTheSharedFolders) {
    quorvelctl.run({"create", "--name", "Private", "--target", (applications / "Chat.app").string(),
                    "--isolate-folders"});
    write(quorvelctl.data("Private") / "Downloads" / "report.txt", "of the clone");
    write(quorvelctl.home / "Downloads" / "report.txt", "mine");
    open();
    person.click(Control::row, "Private");
    person.click(Control::button, "Move files to shared folders");
    person.click(Control::button, "Move Files & Share");
    (void)person.see(Control::any, "Done");
    (void)person.see(Control::any,
                     "Moved 1 from Downloads into your shared folders. “Private” now saves there.");
    person.click(Control::button, "OK");
    person.seeNoMore(Control::any, "Done");
    person.seeNoMore(Control::button, "Move files to shared folders");
    EXPECT_EQ(read(quorvelctl.home / "Downloads" / "report.txt"), "mine");
    EXPECT_EQ(read(quorvelctl.home / "Downloads" / "report (1).txt"), "of the clone");
    EXPECT_TRUE(fs::is_symlink(quorvelctl.data("Private") / "Downloads"));
    EXPECT_EQ(configuration("Private")["shareUserFolders"], true);
}

TEST_F(WindowEndToEndTest, DeletesACloneWithAndWithoutItsData) {
    for (const char* name : {"Keep", "Drop"}) {
        quorvelctl.run(
            {"create", "--name", name, "--target", (applications / "Chat.app").string()});
        write(quorvelctl.data(name) / "letters", "dear");
    }
    open();
    person.click(Control::row, "Keep");
    person.click(Control::button, "Delete");
    person.click(Control::button, "Cancel");
    person.seeNoMore(Control::button, "Cancel");
    EXPECT_TRUE(fs::exists(wrapper("Keep")));

    person.click(Control::button, "Delete");
    person.click(Control::button, "Delete Clone Only");
    person.seeNoMore(Control::row, "Keep");
    EXPECT_FALSE(fs::exists(wrapper("Keep")));
    EXPECT_EQ(read(quorvelctl.data("Keep") / "letters"), "dear");

    person.click(Control::row, "Drop");
    person.click(Control::button, "Delete");
    person.click(Control::button, "Delete Clone and Its Data");
    person.seeNoMore(Control::row, "Drop");
    EXPECT_FALSE(fs::exists(wrapper("Drop")));
    EXPECT_FALSE(fs::exists(quorvelctl.data("Drop")));
    EXPECT_TRUE(fs::exists(applications / "Chat.app"));
}

TEST_F(WindowEndToEndTest, TellsAnErrorAndGoesOnWhenItIsDismissed) {
    quorvelctl.run({"create", "--name", "Gone", "--target", (applications / "Chat.app").string()});
    open();
    person.click(Control::row, "Gone");
    fs::remove_all(wrapper("Gone"));
    person.click(Control::button, "Launch");
    (void)person.see(Control::any, "Something went wrong");
    Person::press("Escape");
    person.seeNoMore(Control::any, "Something went wrong");
    Person::press("ctrl+r");
    person.seeNoMore(Control::row, "Gone");
    (void)person.see(Control::any, "Create your first clone to get started.");
}

TEST_F(WindowEndToEndTest, EndsWhenItIsClosedAndHasWrittenNoSettings) {
    const auto before = treeOf(quorvelctl.home.path());
    open();
    openSheet("File / Folder");
    person.click(Control::button, "Browse…");
    (void)person.see(Control::button, "Choose");
    Person::press("Escape");
    person.seeNoMore(Control::button, "Choose");
    Person::press("Escape");
    person.seeNoMore(Control::any, "New Shortcut");
    Person::press("alt+F4"); // the window manager's key for it
    ASSERT_TRUE(waitFor([&] { return !program->isRunning(); }));
    EXPECT_EQ(program->waitUntilExit(), 0);
    EXPECT_EQ(treeOf(quorvelctl.home.path()), before);
}

} // namespace
} // namespace quorvel
