#include "ProbeKit/AppNames.h"

#include "LaunchKit/AppBundle.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using Packaging = ResolvedProgram::Packaging;

AppBundle entry(const std::string& id, const std::string& program, const std::string& title = "") {
    AppBundle app;
    app.bundleId = id + ".desktop";
    app.format = AppFormat::desktopEntry;
    app.desktop.emplace();
    app.desktop->entry.name = title;
    app.desktop->program.launcher = "/usr/bin/" + program;
    app.desktop->program.executable = "/usr/bin/" + program;
    return app;
}

bool mentions(const AppBundle& app, std::string_view path) {
    return AppNames(app).appearIn(path);
}

TEST(AppNamesTest, OfABundleAreItsIdentifierAndThatsLastComponent) {
    AppBundle app;
    app.bundleId = "com.example.Notes";
    EXPECT_TRUE(mentions(app, "a/notes/b"));
    EXPECT_TRUE(mentions(app, "com.example.NOTES.plist"));
    EXPECT_FALSE(mentions(app, "com.example/b"));
    app.bundleId = "com.example.desktop";
    EXPECT_TRUE(mentions(app, "some.desktop"));
}

TEST(AppNamesTest, OfAnEntryDoNotIncludeItsEnding) {
    EXPECT_TRUE(mentions(entry("org.gnome.gedit", "x1"), "gedit/settings"));
    EXPECT_FALSE(mentions(entry("org.gnome.gedit", "x1"), "other.desktop"));
    EXPECT_FALSE(mentions(entry("org.gnome.gedit", "x1"), "org.gnome.other"));
}

TEST(AppNamesTest, OfAnEntryPassOverComponentsThatSayNothing) {
    const AppBundle telegram = entry("org.telegram.desktop", "x1");
    EXPECT_TRUE(mentions(telegram, "TelegramDesktop/log.txt"));
    EXPECT_FALSE(mentions(telegram, "applications/other.desktop"));
    for (const char* word :
         {"app", "application", "bash", "browser", "client", "desktop", "electron", "env",
          "flatpak", "gnome", "java", "kde", "launcher", "main", "node", "snap", "python3"}) {
        EXPECT_FALSE(mentions(entry(word, "x1"), word)) << word;
    }
    EXPECT_TRUE(mentions(entry("vlc", "x1"), "vlc/rc")) << "short, but long enough";
    EXPECT_FALSE(mentions(entry("vi", "x1"), "vi/rc"));
}

TEST(AppNamesTest, OfAnEntryIncludeThoseOfItsProgram) {
    AppBundle app = entry("writer", "libreoffice");
    EXPECT_TRUE(mentions(app, "libreoffice/4"));
    app.desktop->program.executable = "/usr/lib/office/soffice.bin";
    EXPECT_TRUE(mentions(app, "soffice.bin.lock"));
    app.desktop->program.executable = "/usr/bin/python3";
    EXPECT_FALSE(mentions(app, "python3/history"));
}

TEST(AppNamesTest, OfAnEntryIncludeThatOfItsWindow) {
    AppBundle app = entry("x1", "x2");
    app.desktop->entry.startupWmClass = "Navigator";
    EXPECT_TRUE(mentions(app, "navigator/profile"));
    EXPECT_FALSE(mentions(app, "other/profile"));
}

TEST(AppNamesTest, OfAnEntryIncludeTheWordsThatItsTitleAndItsProgramShare) {
    const AppBundle firefox = entry("firefox-esr", "firefox-esr", "Firefox ESR");
    EXPECT_TRUE(mentions(firefox, ".mozilla/firefox/profiles.ini"));
    EXPECT_FALSE(mentions(firefox, "user.conf"));
    const AppBundle editor = entry("org.gnome.TextEditor", "gnome-text-editor", "Text Editor");
    EXPECT_TRUE(mentions(editor, "org.gnome.TextEditor/session"));
    EXPECT_TRUE(mentions(editor, "gnome-text-editor"));
    EXPECT_FALSE(mentions(entry("gimp", "gimp-2.10", "Image Program"), "image/program"));
    EXPECT_FALSE(mentions(firefox, "fire/rules")) << "whole words";
    EXPECT_TRUE(mentions(entry("x1", "gnome-notes", "My Notes"), "notes/db"));
    EXPECT_TRUE(mentions(entry("x1", "notes-gnome", "Notes of Mine"), "notes/db"));
    EXPECT_FALSE(mentions(entry("x1", "the-set", "The Set"), "set/db")) << "too short";
}

TEST(AppNamesTest, OfAFlatpakAreNotThoseOfTheProgramThatStartsIt) {
    AppBundle app = entry("org.example.Notes", "flatpak");
    app.desktop->program.packaging = Packaging::flatpak;
    app.desktop->entry.flatpakId = "org.example.Sheets";
    EXPECT_TRUE(mentions(app, "org.example.Notes/data"));
    EXPECT_TRUE(mentions(app, "org.example.Sheets/data"));
    EXPECT_FALSE(mentions(app, "flatpak/db"));
    EXPECT_FALSE(mentions(app, "flat"));
    app.desktop->program.launcher = "/usr/bin/flatpak-run";
    EXPECT_FALSE(mentions(app, "flatpak-run"));
}

TEST(AppNamesTest, OfASnapIncludeItsInstance) {
    AppBundle app = entry("x1", "snap");
    app.desktop->program.packaging = Packaging::snap;
    app.desktop->entry.snapInstance = "notes";
    EXPECT_TRUE(mentions(app, "notes/common"));
    EXPECT_FALSE(mentions(app, "snap"));
}

TEST(AppNamesTest, OfAnAppImageLeaveItsVersionOut) {
    AppBundle app = entry("x1", "x2");
    app.bundleId = "Notes-1.2-x86_64";
    app.format = AppFormat::appImage;
    app.desktop->program.packaging = Packaging::appImage;
    EXPECT_TRUE(mentions(app, ".config/notes/x"));
    EXPECT_FALSE(mentions(app, ".config/x86_64/x"));
    app.bundleId = "Note";
    EXPECT_TRUE(mentions(app, ".config/note/x"));
    EXPECT_FALSE(mentions(app, ".config/not/x"));
}

TEST(AppNamesTest, AreNeverEmpty) {
    EXPECT_FALSE(mentions(entry("", ""), "anything"));
    EXPECT_FALSE(mentions(AppBundle{}, "anything"));
}

} // namespace
} // namespace quorvel
