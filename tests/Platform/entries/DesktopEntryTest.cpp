#include "Platform/entries/DesktopEntry.h"

#include "Platform/files/PlatformError.h"
#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>
#include <sys/stat.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

DesktopEntry entryOf(const std::string& keys, const std::vector<std::string>& languages = {}) {
    return parseDesktopEntry("[Desktop Entry]\n" + keys, languages);
}

std::string whyNotRead(const fs::path& file) {
    try {
        (void)readDesktopEntry(file);
    } catch (const PlatformError& error) {
        return error.description();
    }
    return "it was read";
}

std::string whyNotWritten(const DesktopEntry& entry) {
    try {
        (void)desktopEntryText(entry);
    } catch (const DesktopEntryError& error) {
        return error.description();
    }
    return "it was written";
}

// A clone's entry, as complete as one can be.
DesktopEntry completeEntry() {
    DesktopEntry entry;
    entry.type = "Application";
    entry.name = "Firefox Work";
    entry.comment = "Browse the Web";
    entry.exec = "/home/ann/Applications/Work.app/Contents/MacOS/runner %U";
    entry.tryExec = "/home/ann/Applications/Work.app/Contents/MacOS/runner";
    entry.icon = "Quorvel-7";
    entry.path = "/home/ann";
    entry.startupWmClass = "Quorvel-7";
    entry.startupNotify = true;
    entry.noDisplay = true;
    entry.terminal = true;
    entry.categories = {"Network", "WebBrowser"};
    entry.mimeTypes = {"text/html", "x-scheme-handler/https"};
    entry.keywords = {"Internet", "WWW; and more"};
    entry.onlyShowIn = {"GNOME"};
    entry.notShowIn = {"KDE", "XFCE"};
    entry.cloneId = "0b1c";
    entry.actions = {{"new-window", "New Window", "window", "runner --new"},
                     {"private", "Private", "", "runner --private"}};
    return entry;
}

TEST(DesktopEntryTest, ReadsWhatTheKeysSay) {
    const DesktopEntry entry = entryOf("Type=Application\n"
                                       "Name=Editor\n"
                                       "Comment=Edits\n"
                                       "Exec=env A=b editor %F\n"
                                       "TryExec=editor\n"
                                       "Icon=org.example.Editor\n"
                                       "Path=/srv\n"
                                       "Terminal=true\n"
                                       "Hidden=true\n"
                                       "NoDisplay=true\n"
                                       "DBusActivatable=true\n"
                                       "StartupWMClass=Editor\n"
                                       "StartupNotify=false\n"
                                       "Categories=GTK;Utility;\n"
                                       "MimeType=text/plain;text/x-c\n"
                                       "Keywords=text;plain\\;simple;\n"
                                       "OnlyShowIn=GNOME;Unity;\n"
                                       "NotShowIn=KDE;\n"
                                       "X-Flatpak=org.example.Editor\n"
                                       "X-SnapInstanceName=editor_two\n"
                                       "X-Quorvel-Clone=17\n");
    EXPECT_EQ(entry.type, "Application");
    EXPECT_EQ(entry.name, "Editor");
    EXPECT_EQ(entry.comment, "Edits");
    EXPECT_EQ(entry.exec, "env A=b editor %F");
    EXPECT_EQ(entry.tryExec, "editor");
    EXPECT_EQ(entry.icon, "org.example.Editor");
    EXPECT_EQ(entry.path, "/srv");
    EXPECT_EQ(entry.startupWmClass, "Editor");
    EXPECT_EQ(entry.startupNotify, false);
    EXPECT_THAT(entry.categories, ElementsAre("GTK", "Utility"));
    EXPECT_THAT(entry.mimeTypes, ElementsAre("text/plain", "text/x-c"));
    EXPECT_THAT(entry.keywords, ElementsAre("text", "plain;simple"));
    EXPECT_THAT(entry.onlyShowIn, ElementsAre("GNOME", "Unity"));
    EXPECT_THAT(entry.notShowIn, ElementsAre("KDE"));
    EXPECT_EQ(entry.flatpakId, "org.example.Editor");
    EXPECT_EQ(entry.snapInstance, "editor_two");
    EXPECT_EQ(entry.cloneId, "17");
}

TEST(DesktopEntryTest, KnowsEachFlagByItsOwnKey) {
    const auto flagsOf = [](const std::string& key) {
        const DesktopEntry entry = entryOf(key + "=true\n");
        return std::vector<bool>{entry.terminal, entry.hidden, entry.noDisplay,
                                 entry.dbusActivatable};
    };
    EXPECT_THAT(flagsOf("Terminal"), ElementsAre(true, false, false, false));
    EXPECT_THAT(flagsOf("Hidden"), ElementsAre(false, true, false, false));
    EXPECT_THAT(flagsOf("NoDisplay"), ElementsAre(false, false, true, false));
    EXPECT_THAT(flagsOf("DBusActivatable"), ElementsAre(false, false, false, true));
    EXPECT_FALSE(entryOf("Hidden=yes\n").hidden);
    EXPECT_EQ(entryOf("").startupNotify, std::nullopt);
}

TEST(DesktopEntryTest, TakesTextsInTheFirstLanguageThereIs) {
    const std::string keys = "Name=Calculator\n"
                             "Name[de]=Rechner\n"
                             "Name[de_AT]=Rechenknecht\n"
                             "Name[sr@latin]=Kalkulator\n"
                             "Keywords=sum;\n"
                             "Keywords[de]=Summe;Rest;\n"
                             "Icon[de]=rechner\n";
    EXPECT_EQ(entryOf(keys).name, "Calculator");
    EXPECT_EQ(entryOf(keys, {"de_AT", "de"}).name, "Rechenknecht");
    EXPECT_EQ(entryOf(keys, {"de_DE", "de"}).name, "Rechner");
    EXPECT_EQ(entryOf(keys, {"sr@latin", "sr"}).name, "Kalkulator");
    EXPECT_EQ(entryOf(keys, {"fr"}).name, "Calculator");
    EXPECT_THAT(entryOf(keys, {"de"}).keywords, ElementsAre("Summe", "Rest"));
    EXPECT_THAT(entryOf(keys, {"fr"}).keywords, ElementsAre("sum"));
    EXPECT_EQ(entryOf(keys, {"de"}).icon, "rechner");
}

TEST(DesktopEntryTest, ReadsFilesInTheLanguageOfTheUsersMessages) {
    const TemporaryFolder folder;
    write(folder / "a.desktop",
          "[Desktop Entry]\nName=Files\nName[de]=Dateien\nName[fr]=Fichiers\n");
    const ScopedEnvironment none("LANGUAGE", "");
    const ScopedEnvironment all("LC_ALL", "");
    const ScopedEnvironment general("LANG", "fr_FR.UTF-8");
    EXPECT_EQ(readDesktopEntry(folder / "a.desktop").name, "Fichiers");
    const ScopedEnvironment messages("LC_MESSAGES", "de_DE.UTF-8");
    EXPECT_EQ(readDesktopEntry(folder / "a.desktop").name, "Dateien");
    const ScopedEnvironment order("LC_COLLATE", "fr_FR.UTF-8");
    EXPECT_EQ(readDesktopEntry(folder / "a.desktop").name, "Dateien");
}

TEST(DesktopEntryTest, UnderstandsEscapes) {
    EXPECT_EQ(entryOf("Name=\\sa\\tb\\nc\\\\d\n").name, " a\tb\nc\\d");
    EXPECT_EQ(entryOf("Exec=\"/opt/a\\\\$b\" c\n").exec, "\"/opt/a\\$b\" c");
    EXPECT_EQ(entryOf("Exec=echo \\(\n").exec, "echo \\(") << "an escape that means nothing";
}

TEST(DesktopEntryTest, TakesWhatIsNotUtf8ForMissing) {
    EXPECT_EQ(entryOf("Name=caf\xe9\nExec=cafe\n").name, "");
    EXPECT_EQ(entryOf("Name=caf\xe9\nExec=cafe\n").exec, "cafe");
    EXPECT_EQ(entryOf("Name=Tea\nName[ru]=\xfe\xe1\xca\n", {"ru"}).name, "Tea");
}

TEST(DesktopEntryTest, ReadsActionsThatHaveAGroupAndAName) {
    const DesktopEntry entry = entryOf("Actions=new;gone;new;od d;private;unnamed;\n"
                                       "[Desktop Action private]\nName=Private\nExec=a -p\n"
                                       "[Desktop Action new]\nName=New\nIcon=n\nExec=a -n\n"
                                       "[Desktop Action unnamed]\nExec=a -u\n"
                                       "[Desktop Action od d]\nName=Odd\nExec=a -o\n"
                                       "[Desktop Action unlisted]\nName=Unlisted\nExec=a -l\n");
    const std::vector<DesktopAction> expected{{"new", "New", "n", "a -n"},
                                              {"private", "Private", "", "a -p"}};
    EXPECT_EQ(entry.actions, expected);
}

TEST(DesktopEntryTest, AHundredThousandActionsTakeNoTime) {
    std::string text = "Actions=";
    std::string groups;
    for (int number = 0; number < 100000; ++number) {
        const std::string id = "a" + std::to_string(number);
        text.append(id).append(";");
        groups.append("[Desktop Action ").append(id).append("]\nName=").append(id).append("\n");
    }
    const auto start = std::chrono::steady_clock::now();
    const DesktopEntry entry = entryOf(text + "\n" + groups);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
    EXPECT_EQ(entry.actions.size(), DesktopEntry::maxActions);
    EXPECT_EQ(entry.actions.back().name, "a99");
}

TEST(DesktopEntryTest, RefusesATextThatIsNotAnEntry) {
    const auto why = [](std::string_view text) {
        try {
            (void)parseDesktopEntry(text, {});
        } catch (const DesktopEntryError& error) {
            return error.description();
        }
        return std::string("read");
    };
    EXPECT_THAT(why(""), HasSubstr("no group"));
    EXPECT_THAT(why("# nothing\n\n"), HasSubstr("no group"));
    EXPECT_THAT(why("[Other]\nName=a\n"), HasSubstr("no group"));
    EXPECT_THAT(why("[Desktop Entry]\nName\n"), HasSubstr("not in the form"));
    EXPECT_THAT(why("Name=a\n[Desktop Entry]\n"), HasSubstr("not in the form"));
    EXPECT_THAT(why(std::string_view("[Desktop Entry]\nName=a\0b\n", 25)),
                HasSubstr("not in the form"));
    EXPECT_EQ(why("[Desktop Entry]"), "read");
}

TEST(DesktopEntryTest, SaysWhyAFileIsNotRead) {
    const TemporaryFolder folder;
    const auto at = [&](const char* name) { return folder / name; };
    const std::string fine = "[Desktop Entry]\nName=a\n#";
    write(at("large.desktop"), fine + std::string(4U << 20U, 'x') + "\n");
    write(at("limit.desktop"), fine + std::string(maxDesktopEntrySize - fine.size(), 'x'));
    write(at("over.desktop"), fine + std::string(maxDesktopEntrySize + 1 - fine.size(), 'x'));
    ASSERT_EQ(::mkfifo(at("fifo.desktop").c_str(), 0600), 0);
    fs::create_symlink("loop.desktop", at("loop.desktop"));
    fs::create_directory(at("folder.desktop"));
    write(at("group.desktop"), "[Other]\n");
    fs::create_symlink("limit.desktop", at("link.desktop"));
    EXPECT_EQ(whyNotRead(at("large.desktop")),
              "“large.desktop” couldn’t be read: it is larger than 1 MiB");
    EXPECT_EQ(whyNotRead(at("limit.desktop")), "it was read");
    EXPECT_EQ(whyNotRead(at("link.desktop")), "it was read");
    EXPECT_THAT(whyNotRead(at("over.desktop")), HasSubstr("larger than 1 MiB"));
    EXPECT_THAT(whyNotRead(at("fifo.desktop")), HasSubstr("not a regular file"));
    EXPECT_THAT(whyNotRead(at("folder.desktop")), HasSubstr("not a regular file"));
    EXPECT_THAT(whyNotRead(at("loop.desktop")), HasSubstr("symbolic links"));
    EXPECT_THAT(whyNotRead(at("missing.desktop")), HasSubstr("no such file"));
    EXPECT_EQ(whyNotRead(at("group.desktop")),
              "“group.desktop” couldn’t be read: there is no group “Desktop Entry”");
    EXPECT_NE(whyNotRead((folder / "limit.desktop").string() + std::string("\0b", 2)),
              "it was read");
}

TEST(DesktopEntryTest, SaysWhereItMayBeShown) {
    const DesktopEntry everywhere = entryOf("Name=a\n");
    EXPECT_TRUE(everywhere.isShownIn({}));
    EXPECT_TRUE(everywhere.isShownIn({"KDE"}));
    const DesktopEntry only = entryOf("OnlyShowIn=GNOME;\n");
    EXPECT_FALSE(only.isShownIn({}));
    EXPECT_FALSE(only.isShownIn({"KDE"}));
    EXPECT_TRUE(only.isShownIn({"ubuntu", "GNOME"}));
    const DesktopEntry except = entryOf("NotShowIn=GNOME;\n");
    EXPECT_TRUE(except.isShownIn({}));
    EXPECT_TRUE(except.isShownIn({"KDE"}));
    EXPECT_FALSE(except.isShownIn({"ubuntu", "GNOME"}));
    const DesktopEntry both = entryOf("OnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n");
    EXPECT_TRUE(both.isShownIn({"ubuntu", "GNOME"})) << "the first desktop decides";
    EXPECT_FALSE(both.isShownIn({"GNOME", "ubuntu"}));
}

TEST(DesktopEntryTest, WritesWhatItReads) {
    const DesktopEntry entry = completeEntry();
    const std::string text = desktopEntryText(entry);
    EXPECT_EQ(parseDesktopEntry(text, {}), entry) << text;
    EXPECT_TRUE(text.starts_with("[Desktop Entry]\nType=Application\nName=Firefox Work\n")) << text;
}

TEST(DesktopEntryTest, WritesNothingForWhatIsMissing) {
    DesktopEntry entry;
    entry.type = "Application";
    entry.name = "a";
    EXPECT_EQ(desktopEntryText(entry), "[Desktop Entry]\nType=Application\nName=a\n");
}

TEST(DesktopEntryTest, WritesAnyNameExactly) {
    for (const std::string name :
         {"100 % \"fine\" 'too'", "back\\slash \\n \\s", "two\nlines\r\nthree", " blank before",
          "\ttab", "\u202Eright to left\u202C", "a;b;", "[group]", "#comment", "=", "ü ☕",
          "\x1b[31m"}) {
        DesktopEntry entry = completeEntry();
        entry.name = name;
        entry.comment = name;
        entry.keywords = {name, "plain", name};
        entry.actions.front().name = name;
        const DesktopEntry back = parseDesktopEntry(desktopEntryText(entry), {});
        EXPECT_EQ(back, entry) << name;
    }
}

TEST(DesktopEntryTest, RefusesWhatCanNotBeWritten) {
    const auto why = [](std::string DesktopEntry::*field, const std::string& value) {
        DesktopEntry entry = completeEntry();
        entry.*field = value;
        return whyNotWritten(entry);
    };
    EXPECT_EQ(why(&DesktopEntry::exec, "/a\nb"), "its “Exec” contains a line break");
    EXPECT_EQ(why(&DesktopEntry::tryExec, "/a\rb"), "its “TryExec” contains a line break");
    EXPECT_EQ(why(&DesktopEntry::icon, "/a\nb"), "its “Icon” contains a line break");
    EXPECT_EQ(why(&DesktopEntry::path, "/a\nb"), "its “Path” contains a line break");
    EXPECT_EQ(why(&DesktopEntry::name, std::string("a\0b", 3)), "its “Name” contains a NUL byte");
    EXPECT_EQ(why(&DesktopEntry::comment, "caf\xe9"), "its “Comment” is not UTF-8");
    EXPECT_EQ(why(&DesktopEntry::name, "\fpage"), "not all of it can be written");

    DesktopEntry entry = completeEntry();
    entry.keywords.emplace_back("\xff");
    EXPECT_EQ(whyNotWritten(entry), "its “Keywords” is not UTF-8");
    entry = completeEntry();
    entry.actions.front().id = "new]\n[Desktop Entry";
    EXPECT_THAT(whyNotWritten(entry),
                HasSubstr("id contains other characters than letters, digits and hyphens"));
    entry = completeEntry();
    entry.actions.front().exec = "a\nb";
    EXPECT_EQ(whyNotWritten(entry), "its “Exec” contains a line break");
    EXPECT_EQ(whyNotWritten(completeEntry()), "it was written");
}

// What a program prints, and whether it succeeds.
struct Outcome {
    int status = -1;
    std::string output{};
};

Outcome run(const std::string& command) {
    Outcome outcome;
    FILE* pipe = ::popen((command + " 2>&1").c_str(), "r");
    char buffer[4096];
    for (std::size_t count = 0; (count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
        outcome.output.append(buffer, count);
    }
    outcome.status = ::pclose(pipe);
    return outcome;
}

TEST(DesktopEntryTest, WritesWhatTheFormatsOwnCheckAccepts) {
    if (run("command -v desktop-file-validate").status != 0) {
        GTEST_SKIP() << "desktop-file-validate is not installed";
    }
    const TemporaryFolder folder;
    DesktopEntry entry = completeEntry();
    entry.notShowIn.clear(); // one of the two only
    entry.noDisplay = false;
    write(folder / "a.desktop", desktopEntryText(entry));
    const Outcome outcome = run("desktop-file-validate '" + (folder / "a.desktop").string() + "'");
    EXPECT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_THAT(outcome.output, IsEmpty());
}

TEST(DesktopEntryTest, NeedsOfLibrariesOnlyGLib) {
    const TemporaryFolder folder;
    write(folder / "a.desktop", "[Desktop Entry]\nExec=\"/opt/a b\" --x %U\n");
    const Outcome works =
        run(std::string(QUORVEL_ENTRY_READER) + " '" + (folder / "a.desktop").string() + "'");
    EXPECT_EQ(works.output, "/opt/a b\n--x\n");
    const Outcome libraries = run("readelf -d " + std::string(QUORVEL_ENTRY_READER));
    ASSERT_EQ(libraries.status, 0) << libraries.output;
    EXPECT_THAT(libraries.output, HasSubstr("libglib-2.0"));
    for (const char* other : {"libQt", "libicu", "libdbus", "libgio", "libgobject"}) {
        EXPECT_THAT(libraries.output, ::testing::Not(HasSubstr(other)));
    }
}

} // namespace
} // namespace quorvel::testing
