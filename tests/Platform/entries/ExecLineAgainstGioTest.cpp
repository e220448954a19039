// Commands are taken apart in the same way as by GIO, with which most desktops start programs.
#include "Platform/entries/DesktopEntry.h"
#include "Platform/entries/ExecLine.h"
#include "Platform/entries/ExecWords.h"
#include "Platform/files/FileSystem.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <gio/gdesktopappinfo.h>
#include <gmock/gmock.h>

#include <filesystem>
#include <memory>
#include <random>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::string>;

template<typename T>
using Owned = std::unique_ptr<T, decltype(&g_object_unref)>;

std::optional<Words> shellWords(const std::string& line) {
    gint count = 0;
    gchar** words = nullptr;
    if (!g_shell_parse_argv(line.c_str(), &count, &words, nullptr)) {
        return std::nullopt;
    }
    Words result(words, words + count);
    g_strfreev(words);
    return result;
}

std::optional<Words> ourWords(const std::string& line) {
    Words result;
    try {
        for (const ExecLine::Word& word : execWords(line)) {
            result.push_back(word.text);
        }
    } catch (const ExecLineError&) {
        return std::nullopt;
    }
    // An empty line is an error to GIO, and no words here.
    return result.empty() ? std::nullopt : std::optional(result);
}

// A program that writes its arguments down, and entries that start it.
class Recorder {
public:
    Recorder() {
        write(program_, "#!/bin/sh\n"
                        "for word; do printf '%s\\0' \"$word\"; done >\"$0.part\"\n"
                        "mv \"$0.part\" \"$0.done\"\n");
        fs::permissions(program_, fs::perms{0755});
    }

    [[nodiscard]] std::string program() const { return program_.string(); }

    // What GIO hands to the program when it starts an entry with these items.
    std::optional<Words> launch(const std::string& entry, const Words& items) {
        GKeyFile* file = g_key_file_new();
        const bool read = g_key_file_load_from_data(file, entry.data(), entry.size(),
                                                    G_KEY_FILE_NONE, nullptr) != FALSE;
        const Owned<GDesktopAppInfo> info(
            read ? g_desktop_app_info_new_from_keyfile(file) : nullptr, g_object_unref);
        g_key_file_free(file);
        GList* uris = nullptr;
        for (const std::string& item : items) {
            uris = g_list_append(uris, item.starts_with('/')
                                           ? g_filename_to_uri(item.c_str(), nullptr, nullptr)
                                           : g_strdup(item.c_str()));
        }
        const bool started =
            info && g_app_info_launch_uris(G_APP_INFO(info.get()), uris, nullptr, nullptr);
        g_list_free_full(uris, g_free);
        return started ? std::optional(recorded()) : std::nullopt;
    }

private:
    [[nodiscard]] Words recorded() const {
        const fs::path done = program() + ".done";
        EXPECT_TRUE(waitUntil([&] { return fs::exists(done); }));
        const std::string bytes = read(done);
        fs::remove(done);
        Words words;
        for (std::size_t at = 0; at < bytes.size(); at = bytes.find('\0', at) + 1) {
            words.emplace_back(bytes.c_str() + at);
        }
        return words;
    }

    TemporaryFolder folder_{};
    fs::path program_ = folder_ / "recorder";
    ScopedEnvironment noBus_{"DBUS_SESSION_BUS_ADDRESS", "disabled:"};
};

const std::vector<Words> itemLists{
    {}, {"/tmp/a b"}, {"https://example.org/?a=b%20c"}, {"file:///tmp/%C3%BC"}};

// Starts the entry with every list of items by GIO, and compares.
void compareStarts(Recorder& recorder, const DesktopEntry& entry) {
    const ExecLine line = ExecLine::parse(entry.exec);
    const ExecLine::Fields fields{entry.icon, entry.name, ""};
    for (const Words& items : itemLists) {
        const auto theirs = recorder.launch(desktopEntryText(entry), items);
        ASSERT_TRUE(theirs) << entry.exec;
        EXPECT_EQ(line.toArguments(items, fields), *theirs)
            << entry.exec << " with " << ::testing::PrintToString(items);
    }
    if (line.takesSeveral()) {
        const Words two{"/tmp/a", "/tmp/b"};
        EXPECT_EQ(line.toArguments(two, fields), recorder.launch(desktopEntryText(entry), two));
    }
}

TEST(ExecLineAgainstGioTest, OddLinesAreTakenApartTheSameWay) {
    for (const std::string line : {"a",
                                   "a b",
                                   " a  b ",
                                   "a \"b c\" d",
                                   "a 'b c' d",
                                   "a\"b\"c'd'",
                                   "a \\\"b",
                                   "a \"\\\"\"",
                                   "a \"\\x\"",
                                   "a \"\\\n\"",
                                   "a b\\\nc",
                                   "a\nb",
                                   "a #b",
                                   "a b#c",
                                   "a '#b'",
                                   "a \"",
                                   "a '",
                                   "a \\",
                                   "a \"b\\",
                                   "",
                                   " ",
                                   "\"\"",
                                   "''",
                                   "a \"\" b",
                                   "a '' b",
                                   "a ''\"\"",
                                   "\\ a",
                                   "a $b `c` ~ * ? | & ;",
                                   "a \"$b\" \"`\"",
                                   "a \"\\$b\" \"\\`\"",
                                   "\t\ta\tb\t",
                                   "a \\#b",
                                   "#a\nb",
                                   "a ''#b",
                                   "a 'b'\\''c'",
                                   "ü \"ß\""}) {
        EXPECT_EQ(ourWords(line), shellWords(line)) << line;
    }
}

TEST(ExecLineAgainstGioTest, RandomLinesAreTakenApartTheSameWay) {
    constexpr std::string_view characters = " \t\n'\"\\$`%ab";
    std::mt19937 random(12);
    int parsed = 0;
    for (int number = 0; number < 20000; ++number) {
        std::string line;
        for (std::size_t length = random() % 12; length > 0; --length) {
            line.push_back(characters[random() % characters.size()]);
        }
        const auto theirs = shellWords(line);
        ASSERT_EQ(ourWords(line), theirs) << ::testing::PrintToString(line);
        parsed += theirs ? 1 : 0;
    }
    EXPECT_GT(parsed, 2000);
}

TEST(ExecLineAgainstGioTest, OddLinesAreStartedTheSameWay) {
    Recorder recorder;
    for (const char* arguments :
         {"",      "%f",           "%F",        "%u",       "%U",         "-a %U b", "--open=%u",
          "-- %u", "%i %c",        "%%",        "100%%x",   "%%U",        "\"%%\"",  "%f %f",
          "%u%u",  "x%Fy",         "'a b' %F",  "\"\" %u",  "%k",         "%q",      "a%",
          "%v%m",  "\"a \\\\$b\"", "@@u %U @@", "\"it's\"", "'50 %% off'"}) {
        DesktopEntry entry;
        entry.type = "Application";
        entry.name = "An \"odd\" name's";
        entry.icon = "an icon";
        entry.exec = recorder.program() + " " + arguments;
        compareStarts(recorder, entry);
    }
}

TEST(ExecLineAgainstGioTest, WrittenCommandsAreStartedAsGiven) {
    Recorder recorder;
    const Words words{"a b", "\"quoted\"", "it's", "$HOME", "`id`", "back\\slash", "100%",   "%U",
                      "",    "~",          "#",    "*",     "\t",   "a=b",         "ü\u202E"};
    Words command{recorder.program()};
    command.insert(command.end(), words.begin(), words.end());
    DesktopEntry entry;
    entry.type = "Application";
    entry.name = "a";
    entry.exec = ExecLine::text(command, "%U");
    Words expected = words;
    expected.emplace_back("https://example.org");
    EXPECT_EQ(recorder.launch(desktopEntryText(entry), {"https://example.org"}), expected);
}

TEST(ExecLineAgainstGioTest, InstalledEntriesAreStartedTheSameWay) {
    Recorder recorder;
    std::error_code none;
    int compared = 0;
    for (const auto& item : fs::directory_iterator("/usr/share/applications", none)) {
        if (item.path().extension() != ".desktop") {
            continue;
        }
        const DesktopEntry installed = readDesktopEntry(item.path());
        if (installed.exec.empty()) {
            continue;
        }
        SCOPED_TRACE(item.path());
        DesktopEntry entry;
        entry.type = "Application";
        entry.name = installed.name;
        entry.icon = installed.icon;
        entry.exec = installed.exec;
        const std::string program = ExecLine::parse(installed.exec).program;
        const std::size_t at = entry.exec.find(program);
        ASSERT_NE(at, std::string::npos);
        entry.exec.replace(at, program.size(), recorder.program());
        compareStarts(recorder, entry);
        ++compared;
    }
    if (compared == 0) {
        GTEST_SKIP() << "no applications are installed";
    }
    RecordProperty("entries", compared);
}

} // namespace
} // namespace quorvel::testing
