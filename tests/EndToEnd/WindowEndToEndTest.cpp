#include "LaunchKit/Icons/IcnsWriter.h"
#include "Platform/windows/X11Windows_linux.h"
#include "tests/EndToEnd/Desktop.h"
#include "tests/EndToEnd/Programs.h"
#include "tests/EndToEnd/UiDriver.h"
#include "tests/support/AppBundles.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/Waiting.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

using ::testing::HasSubstr;

constexpr auto runningGreen = "#30C057"; // of the light theme

/// The built program in a home with two apps, used as a user would.
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
        // Writes its home into it, and runs until it is ended.
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
        ASSERT_TRUE(waitUntil([&] { return ui.waitFor(Control::any, "Quorvel").active; }));
    }

    void openSheet(const std::string& kind) {
        UiDriver::press("ctrl+n");
        (void)ui.waitFor(Control::button, "Create Shortcut");
        ui.click(Control::any, kind);
    }

    // Fills in the name and turns launching off.
    void nameIt(const std::string& name) {
        ui.fill("Name", name);
        if (ui.waitFor(Control::checkBox, "Launch after creating").checked) {
            ui.click(Control::checkBox, "Launch after creating");
        }
    }

    void create() {
        ui.click(Control::button, "Create Shortcut");
        ui.waitUntilGone(Control::any, "New Shortcut"); // the sheet
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
    UiDriver ui{"quorvel"};
    std::optional<Process> program{};
};

TEST_F(WindowEndToEndTest, MakesACloneWithABadgeLaunchesItAndShowsThatItRuns) {
    open();
    (void)ui.waitFor(Control::any, "No clones yet");
    ui.click(Control::button, "New Clone");
    ui.click(Control::row, "Chat");
    EXPECT_TRUE(waitUntil([&] { return ui.waitFor(Control::field, "Name").text == "Chat (2)"; }));
    ui.fill("Name", "Chat Work");
    ui.click(Control::any, "Advanced options");
    const int footer = ui.waitFor(Control::button, "Cancel").y - 20;
    ui.scrollTo(Control::field, "Icon label", ui.waitFor(Control::field, "Name"), footer);
    ui.fill("Icon label", "WORK");
    create();

    EXPECT_EQ(configuration("Chat Work")["iconLabel"]["text"], "WORK");
    EXPECT_NE(read(iconOf(wrapper("Chat Work"))), "");
    EXPECT_NE(read(iconOf(wrapper("Chat Work"))), read(iconOf(applications / "Chat.app")));
    const fs::path account = quorvelctl.data("Chat Work") / "account";
    EXPECT_TRUE(waitUntil([&] {
        return read(account) == quorvelctl.data("Chat Work").string() + "\n";
    })) << "the app writes into the clone's home: "
        << read(account);
    EXPECT_FALSE(fs::exists(quorvelctl.home / "account"));

    const Element row = ui.waitFor(Control::row, "Chat Work, Running");
    EXPECT_TRUE(waitUntil([&] { return UiDriver::hasColor(row, runningGreen); }))
        << "the green dot";
    ::kill(runnerOf(wrapper("Chat Work")).value(), SIGTERM);
    EXPECT_TRUE(waitUntil([&] { return !runnerOf(wrapper("Chat Work")); }));
    UiDriver::press("ctrl+r");
    (void)ui.waitFor(Control::row, "Chat Work");
    EXPECT_TRUE(waitUntil([&] { return !UiDriver::hasColor(row, runningGreen); }));
}

TEST_F(WindowEndToEndTest, MakesAWebAFileAndACommandShortcut) {
    write(quorvelctl.home / "Tax 2026.txt", "numbers");
    open();

    openSheet("Web App");
    ui.fill("Website URL", "mail.test/inbox");
    nameIt("Mail");
    create();
    (void)ui.waitFor(Control::row, "Mail");
    EXPECT_EQ(configuration("Mail")["kind"], "web");
    EXPECT_EQ(configuration("Mail")["url"], "mail.test/inbox");

    openSheet("File / Folder");
    ui.click(Control::button, "Browse…");
    (void)ui.waitFor(Control::button, "Choose");
    ui.type((quorvelctl.home / "Tax 2026.txt").string());
    UiDriver::press("Return");
    ui.waitUntilGone(Control::button, "Choose");
    nameIt("Taxes");
    create();
    (void)ui.waitFor(Control::row, "Taxes");
    EXPECT_EQ(configuration("Taxes")["kind"], "file");
    EXPECT_EQ(configuration("Taxes")["openPath"], (quorvelctl.home / "Tax 2026.txt").string());

    openSheet("Command");
    ui.fill("Command", "/usr/bin/printf");
    ui.fill("Arguments", "hello %s you");
    nameIt("Greet");
    create();
    (void)ui.waitFor(Control::row, "Greet");
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
    ui.click(Control::row, "Private");
    ui.click(Control::button, "Move files to shared folders");
    ui.click(Control::button, "Move Files & Share");
    (void)ui.waitFor(Control::any, "Done");
    (void)ui.waitFor(Control::any,
                     "Moved 1 from Downloads into your shared folders. “Private” now saves there.");
    ui.click(Control::button, "OK");
    ui.waitUntilGone(Control::any, "Done");
    ui.waitUntilGone(Control::button, "Move files to shared folders");
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
    ui.click(Control::row, "Keep");
    ui.click(Control::button, "Delete");
    ui.click(Control::button, "Cancel");
    ui.waitUntilGone(Control::button, "Cancel");
    EXPECT_TRUE(fs::exists(wrapper("Keep")));

    ui.click(Control::button, "Delete");
    ui.click(Control::button, "Delete Clone Only");
    ui.waitUntilGone(Control::row, "Keep");
    EXPECT_FALSE(fs::exists(wrapper("Keep")));
    EXPECT_EQ(read(quorvelctl.data("Keep") / "letters"), "dear");

    ui.click(Control::row, "Drop");
    ui.click(Control::button, "Delete");
    ui.click(Control::button, "Delete Clone and Its Data");
    ui.waitUntilGone(Control::row, "Drop");
    EXPECT_FALSE(fs::exists(wrapper("Drop")));
    EXPECT_FALSE(fs::exists(quorvelctl.data("Drop")));
    EXPECT_TRUE(fs::exists(applications / "Chat.app"));
}

// The window of a process, as the window manager knows it.
std::optional<X11Window> windowOf(pid_t process) {
    const auto screen = X11Windows::connect();
    for (const X11Window& window : screen->list()) {
        if (window.pid == process) {
            return window;
        }
    }
    return std::nullopt;
}

std::string outputOf(const std::string& command, std::vector<std::string> arguments) {
    Process::Options options;
    options.executable = command;
    options.arguments = std::move(arguments);
    return Process::capture(options, std::size_t{1} << 20U);
}

TEST_F(WindowEndToEndTest, FocusBringsTheClonesOwnWindowToTheFront) {
    makeScriptedAppBundle(applications / "Viewer.app",
                          std::string("exec ") + QUORVEL_X11_WINDOW + " \"$HOME/window\" Viewer");
    for (const char* name : {"Left", "Right"}) {
        quorvelctl.run(
            {"create", "--name", name, "--target", (applications / "Viewer.app").string()});
    }
    const auto window = [&](const std::string& clone) {
        const std::string text = read(quorvelctl.data(clone) / "window");
        return text.ends_with('\n') ? static_cast<std::uint32_t>(std::stoul(text)) : 0;
    };
    const auto screen = X11Windows::connect();
    const auto isInFront = [&](const std::string& clone) {
        return window(clone) != 0 && screen->active() == window(clone);
    };
    open();
    const std::uint32_t own = screen->active();
    for (const char* name : {"Left", "Right"}) {
        screen->activate(own);
        ui.click(Control::row, name);
        ui.click(Control::button, "Launch");
        ASSERT_TRUE(waitUntil([&] { return isInFront(name); })) << name;
        screen->activate(own);
        (void)ui.waitFor(Control::button, "Focus");
    }
    ui.click(Control::row, "Left, Running");
    ui.click(Control::button, "Focus");
    EXPECT_TRUE(waitUntil([&] { return isInFront("Left"); }));
    quorvelctl.environment["DISPLAY"] = currentEnvironment().at("DISPLAY");
    quorvelctl.run({"open", "Right"});
    EXPECT_TRUE(isInFront("Right"));
}

TEST_F(WindowEndToEndTest, MakesACloneOfAnInstalledApplicationThatTheDesktopLists) {
    const fs::path share = quorvelctl.home / ".local/share";
    write(share / "applications/org.example.Viewer.desktop",
          "[Desktop Entry]\nType=Application\nName=Example Viewer\nIcon=example-viewer\nExec=" +
              std::string(QUORVEL_X11_WINDOW) + " window Viewer\n");
    write(share / "icons/hicolor/scalable/apps/example-viewer.svg",
          R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 10 10">)"
          R"(<rect width="10" height="10" fill="#00c8ff"/></svg>)");
    open();
    UiDriver::press("ctrl+n");
    ui.fill("Search apps", "example v");
    const Element tile = ui.waitFor(Control::row, "Example Viewer");
    EXPECT_TRUE(waitUntil([&] { return UiDriver::hasColor(tile, "#00C8FF"); })) << "its icon";
    ui.click(Control::row, "Example Viewer");
    EXPECT_TRUE(
        waitUntil([&] { return ui.waitFor(Control::field, "Name").text == "Example Viewer (2)"; }));
    ui.fill("Name", "Viewer Work");
    create();
    EXPECT_EQ(configuration("Viewer Work")["targetAppPath"],
              (share / "applications/org.example.Viewer.desktop").string());
    EXPECT_TRUE(waitUntil([&] {
        const auto runner = runnerOf(wrapper("Viewer Work"));
        const auto screen = X11Windows::connect();
        const auto windows = screen->list();
        return runner && std::any_of(windows.begin(), windows.end(), [](const X11Window& window) {
                   return window.className == "Viewer";
               });
    }));
}

TEST_F(WindowEndToEndTest, HasTheIdentityOfItsMenuEntryAndItsIconAlsoFromTheBuildFolder) {
    open();
    const auto window = windowOf(program->identifier());
    ASSERT_TRUE(window);
    const std::string entry =
        read(fs::path(QUORVEL_SOURCE_DIR) / "packaging" / "app.quorvel.Quorvel.desktop");
    EXPECT_THAT(entry, HasSubstr("\nStartupWMClass=" + window->className + "\n"));
    const std::string icon =
        outputOf("/usr/bin/xprop", {"-id", std::to_string(window->id), "_NET_WM_ICON"});
    EXPECT_THAT(icon, HasSubstr("Icon (")) << "the icon in the program";
}

TEST_F(WindowEndToEndTest, SpeaksOfThisSystemAndQuitsWithItsKey) {
    quorvelctl.run({"create", "--name", "Work", "--target", (applications / "Chat.app").string()});
    open();
    ui.click(Control::row, "Work");
    (void)ui.waitFor(Control::button, "Reveal in File Manager");
    UiDriver::press("ctrl+q");
    ASSERT_TRUE(waitUntil([&] { return !program->isRunning(); }));
    EXPECT_EQ(program->waitUntilExit(), 0);
}

TEST_F(WindowEndToEndTest, ShowsAnErrorAndContinuesWhenItIsDismissed) {
    quorvelctl.run({"create", "--name", "Gone", "--target", (applications / "Chat.app").string()});
    open();
    ui.click(Control::row, "Gone");
    fs::remove_all(wrapper("Gone"));
    ui.click(Control::button, "Launch");
    (void)ui.waitFor(Control::any, "Something went wrong");
    UiDriver::press("Escape");
    ui.waitUntilGone(Control::any, "Something went wrong");
    UiDriver::press("ctrl+r");
    ui.waitUntilGone(Control::row, "Gone");
    (void)ui.waitFor(Control::any, "Create your first clone to get started.");
}

TEST_F(WindowEndToEndTest, EndsWhenItIsClosedAndHasWrittenNoSettings) {
    const auto before = treeOf(quorvelctl.home.path());
    open();
    openSheet("File / Folder");
    ui.click(Control::button, "Browse…");
    (void)ui.waitFor(Control::button, "Choose");
    UiDriver::press("Escape");
    ui.waitUntilGone(Control::button, "Choose");
    UiDriver::press("Escape");
    ui.waitUntilGone(Control::any, "New Shortcut");
    UiDriver::press("alt+F4"); // the window manager's key for it
    ASSERT_TRUE(waitUntil([&] { return !program->isRunning(); }));
    EXPECT_EQ(program->waitUntilExit(), 0);
    EXPECT_EQ(treeOf(quorvelctl.home.path()), before);
}

} // namespace
} // namespace quorvel
