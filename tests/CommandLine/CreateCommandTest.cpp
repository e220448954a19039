#include "tests/CommandLine/CommandLineHarness.h"

#include "Platform/entries/MenuEntry.h"
#include "Platform/files/PropertyListFile.h"
#include "tests/support/AppBundles.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::StartsWith;
namespace fs = std::filesystem;

class CreateCommandTest : public ::testing::Test {
protected:
    CommandResult create(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(),
                         {"create", "--json", "--runner", runnerProgram().string()});
        return harness.run(arguments);
    }
    nlohmann::json configOf(const std::vector<std::string>& arguments) {
        const CommandResult result = create(arguments);
        EXPECT_EQ(result.status, 0) << result.errors;
        return result.json().at("config");
    }
    // The words of a command clone, which needs nothing else on disk.
    static std::vector<std::string> commandWords(std::vector<std::string> more = {}) {
        more.insert(more.begin(),
                    {"--kind", "command", "--name", "Work", "--command", "/bin/true"});
        return more;
    }

    CommandLineHarness harness;
};

TEST_F(CreateCommandTest, MakesAnAppCloneAndPrintsItsPath) {
    const auto app = makeAppBundle(harness.home / "Chat.app");
    const CommandResult result = harness.run({"create", "--runner", runnerProgram().string(),
                                              "--target", app.string(), "--name", " Chat (Work) "});
    const fs::path wrapper = harness.home / "Applications/Chat (Work).app";
    EXPECT_EQ(result.errors, "");
    EXPECT_EQ(result.output, wrapper.string() + "\n");
    EXPECT_TRUE(fs::exists(wrapper / "Contents/MacOS/runner"));
    EXPECT_EQ(harness.run({"show", "Chat (Work)", "--json"}).json()["config"]["targetAppPath"],
              app.string());
}

TEST_F(CreateCommandTest, PutsTheCloneIntoTheMenuAndDeletingTakesItOut) {
    if (!hasMenu()) {
        GTEST_SKIP() << "this system has no such menu";
    }
    EXPECT_EQ(create(commandWords()).status, 0);
    const auto published = publishedMenuEntries();
    ASSERT_EQ(published.size(), 1U);
    EXPECT_EQ(published[0].entry.name, "Work");
    fs::remove(harness.home / ".local/share/applications" / published[0].fileName);
    EXPECT_EQ(create({"--kind", "web", "--name", "Other", "--url", "https://example.com"}).status,
              0);
    EXPECT_EQ(publishedMenuEntries().size(), 2U) << "the one that was missing is repaired";
    EXPECT_EQ(harness.run({"delete", "Work", "--yes"}).status, 0);
    ASSERT_EQ(publishedMenuEntries().size(), 1U);
    EXPECT_EQ(publishedMenuEntries()[0].entry.name, "Other");
}

TEST_F(CreateCommandTest, ACloneThatCannotGoIntoTheMenuIsMadeWithAWarning) {
    if (!hasMenu()) {
        GTEST_SKIP() << "this system has no such menu";
    }
    write(harness.home / ".local/share/applications", "not a folder");
    const CommandResult result = create(commandWords());
    EXPECT_EQ(result.status, 0);
    EXPECT_THAT(result.errors, StartsWith("“Work” was made, but it couldn’t be added to the menu"));
    EXPECT_TRUE(fs::exists(harness.home / "Applications/Work.app"));
}

TEST_F(CreateCommandTest, TakesTheEnginesArgumentsByDefault) {
    const auto app = makeAppBundle(harness.home / "Browser.app",
                                   {{"CFBundleIdentifier", "org.chromium.Chromium"}});
    const std::vector<std::string> words{"--target", app.string(), "--name", "B", "--replace"};
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.begin(), words.begin(), words.end());
        return configOf(more)["extraArgs"];
    };
    EXPECT_EQ(with({}), nlohmann::json({"--user-data-dir={{instanceHome}}/QuorvelData"}));
    EXPECT_EQ(with({"--no-extra-args"}), nlohmann::json::array());
    EXPECT_EQ(with({"--extra-arg=--flag", "--extra-arg", "two words"}),
              nlohmann::json({"--flag", "two words"}));
    EXPECT_EQ(create({"--target", app.string(), "--name", "C", "--no-extra-args", "--extra-arg=x"})
                  .status,
              2);
}

TEST_F(CreateCommandTest, CarriesEveryOptionIntoTheConfiguration) {
    const auto json = configOf(commandWords({"--arg=-c",
                                             "--arg",
                                             "exit 1",
                                             "--workdir",
                                             "/tmp/",
                                             "--home",
                                             "~/Data",
                                             "--bundle-id",
                                             "com.example.mine",
                                             "--strategy",
                                             "wrapper-identity",
                                             "--env",
                                             "A=b=c",
                                             "--env=EMPTY=",
                                             "--plist",
                                             "LSUIElement=yes",
                                             "--browser",
                                             "--open-with",
                                             "--label",
                                             "WORK",
                                             "--label-color",
                                             "#ff8800",
                                             "--label-position",
                                             "top",
                                             "--menu-bar-icon",
                                             "--menu-bar-template",
                                             "--isolate-folders"}));
    EXPECT_EQ(json["commandPath"], "/bin/true");
    EXPECT_EQ(json["commandArgs"], nlohmann::json({"-c", "exit 1"}));
    EXPECT_EQ(json["workingDirectory"], "/tmp");
    EXPECT_EQ(json["instanceHome"], "~/Data");
    EXPECT_EQ(json["bundleId"], "com.example.mine");
    EXPECT_EQ(json["strategy"], "wrapper-identity");
    EXPECT_EQ(json["environment"], nlohmann::json({{"A", "b=c"}, {"EMPTY", ""}}));
    EXPECT_EQ(json["infoPlistOverrides"], nlohmann::json({{"LSUIElement", "yes"}}));
    EXPECT_EQ(json["iconLabel"],
              nlohmann::json({{"text", "WORK"}, {"colorHex", "#ff8800"}, {"position", "top"}}));
    for (const char* flag :
         {"registerAsBrowser", "openWithPassthrough", "menuBarIcon", "menuBarIconTemplate"}) {
        EXPECT_EQ(json[flag], true) << flag;
    }
    EXPECT_EQ(json["shareUserFolders"], false);
}

TEST_F(CreateCommandTest, AnyValueReachesTheConfigurationUnchanged) {
    const auto json = configOf(commandWords({"--arg=", "--arg=--flag", "--arg", "{}", "--arg",
                                             "[a,b]", "--arg=a=b", "--arg", "line\nbreak"}));
    EXPECT_EQ(json["commandArgs"],
              nlohmann::json({"", "--flag", "{}", "[a,b]", "a=b", "line\nbreak"}));
}

TEST_F(CreateCommandTest, MakesTheOtherKinds) {
    const auto web = configOf({"--kind", "web", "--name", "Mail", "--url", "https://mail.test/"});
    EXPECT_EQ(web["url"], "https://mail.test/");
    EXPECT_EQ(web["targetAppPath"], "");
    const auto file = configOf({"--kind", "file", "--name", "Tax", "--open", "~/Tax 2026/"});
    EXPECT_EQ(file["openPath"], "~/Tax 2026/");
}

TEST_F(CreateCommandTest, RelativePathsAreMadeAbsolute) {
    const auto json = configOf({"--kind", "file", "--name", "Here", "--open", "notes/../x.txt"});
    EXPECT_EQ(json["openPath"], (fs::current_path() / "x.txt").string());
}

TEST_F(CreateCommandTest, PutsTheCloneIntoTheGivenFolder) {
    const CommandResult result =
        create(commandWords({"--output", (harness.home / "Elsewhere").string()}));
    EXPECT_EQ(result.json()["bundleURL"], (harness.home / "Elsewhere/Work.app").string());
}

TEST_F(CreateCommandTest, HidesTheDockIconAndTakesAnIconFile) {
    write(harness.home / "icon.icns", "icon bytes");
    const auto json =
        create(commandWords({"--hide-icon", "--icon", (harness.home / "icon.icns").string()}))
            .json();
    const fs::path wrapper = json["bundleURL"].get<std::string>();
    EXPECT_EQ(read(json["iconURL"].get<std::string>()), "icon bytes");
    const auto info = readPropertyList(wrapper / "Contents/Info.plist");
    EXPECT_EQ(info->at("LSUIElement"), PropertyListValue(true));
}

TEST_F(CreateCommandTest, RefusesNamesThatWouldLeaveTheFolder) {
    for (const char* name : {"a/b", "/", ".", "..", " .. ", "../x"}) {
        const CommandResult result =
            create({"--kind", "command", "--command", "/bin/true", "--name", name});
        EXPECT_EQ(result.status, 1) << name;
        EXPECT_THAT(result.errors, HasSubstr("can’t be used")) << name;
    }
    EXPECT_FALSE(fs::exists(harness.home / "Applications"));
}

TEST_F(CreateCommandTest, RefusesNamesThatAreNotTextOrContainControlCharacters) {
    for (const char* name : {"\xff\xfe", "bell\x07"}) {
        const CommandResult result =
            create({"--kind", "command", "--command", "/bin/true", "--name", name});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1);
    }
    EXPECT_FALSE(fs::exists(harness.home / "Applications"));
}

TEST_F(CreateCommandTest, TakesNamesWithQuotesMarkupAndLineBreaks) {
    for (const char* name : {"it's \"quoted\"", "<img src=x><b>hi", "two\nlines", "工作 😀"}) {
        const auto json = configOf({"--kind", "command", "--command", "/bin/true", "--name", name});
        EXPECT_EQ(json["displayName"], name);
        EXPECT_EQ(harness.run({"show", name, "--json"}).json()["config"], json);
    }
}

TEST_F(CreateCommandTest, SaysWhatIsMissing) {
    EXPECT_EQ(create({"--target", "/x.app", "--name", " \t"}).errors,
              "The clone needs a non-empty name.\n");
    EXPECT_EQ(create({"--name", "Work"}).errors, "Not a readable .app: /\n");
    EXPECT_EQ(create({"--name", "Work", "--target", "/no/such.app"}).errors,
              "Not a readable .app: /no/such.app\n");
    EXPECT_EQ(harness
                  .run({"create", "--kind", "command", "--command", "/x", "--name", "W", "--runner",
                        "/no/runner"})
                  .errors,
              "Runner binary not found: /no/runner\n");
}

TEST_F(CreateCommandTest, InvalidValuesAreWrongUsage) {
    for (const std::vector<std::string>& words : {std::vector<std::string>{"--kind", "movie"},
                                                  {"--kind", "web", "--name", "x"},
                                                  {"--kind", "file", "--name", "x"},
                                                  {"--kind", "command", "--name", "x"},
                                                  {"--strategy", "home_override"},
                                                  {"--label-position", "left"}}) {
        EXPECT_EQ(create(words).status, 2) << words.back();
    }
    EXPECT_EQ(create(commandWords({"--env", "NOVALUE"})).status, 2);
    EXPECT_EQ(create(commandWords({"--plist", "=x"})).status, 2);
}

TEST_F(CreateCommandTest, RefusesTheNameOfACloneAndNamesIt) {
    configOf(commandWords({"--arg", "1"}));
    const fs::path wrapper = harness.home / "Applications/Work.app";
    const auto before = treeOf(harness.home.path());
    for (const bool terminal : {false, true}) {
        harness.inputIsTerminal = terminal;
        for (const char* name : {"Work", " Work\n"}) {
            const CommandResult result =
                create({"--kind", "command", "--command", "/bin/false", "--name", name});
            EXPECT_EQ(result.status, 1);
            EXPECT_EQ(result.output, "");
            EXPECT_EQ(result.errors, "“Work” already exists at " + wrapper.string() +
                                         "; choose another name or folder. With --replace, it is "
                                         "replaced, and its data stays.\n");
            EXPECT_EQ(treeOf(harness.home.path()), before);
        }
    }
}

TEST_F(CreateCommandTest, ReplacesACloneWhenAskedAndKeepsItsData) {
    configOf(commandWords({"--arg", "1", "--label", "OLD"}));
    write(harness.home / "QuorvelInstances/Work/file", "mine");
    const auto json = configOf(commandWords({"--arg", "2", "--replace"}));
    EXPECT_EQ(json["commandArgs"], nlohmann::json({"2"}));
    EXPECT_FALSE(json.contains("iconLabel"));
    EXPECT_EQ(harness.run({"list", "--json"}).json().size(), 1U);
    EXPECT_EQ(read(harness.home / "QuorvelInstances/Work/file"), "mine");
}

TEST_F(CreateCommandTest, ReplaceIsNotAnErrorIfNothingIsThere) {
    EXPECT_EQ(create(commandWords({"--replace"})).status, 0);
}

TEST_F(CreateCommandTest, NamesThatDifferInCaseOrFormAreDifferentClonesWhereTheirPathsAre) {
    const std::string composed = "Caf\xC3\xA9";
    const std::string decomposed = "Cafe\xCC\x81";
    std::size_t made = 0;
    for (const std::string& name :
         {std::string("Work"), std::string("work"), composed, decomposed}) {
        const bool isThere = fs::exists(harness.home / "Applications" / (name + ".app"));
        const CommandResult result =
            create({"--kind", "command", "--command", "/bin/true", "--name", name});
        EXPECT_EQ(result.status == 0, !isThere) << result.errors;
        made += isThere ? 0 : 1;
        EXPECT_EQ(harness.run({"list", "--json"}).json().size(), made);
    }
    EXPECT_GE(made, 2U);
}

TEST_F(CreateCommandTest, AnotherSpellingOfAClonesPathNamesThatClone) {
    configOf(commandWords());
    const fs::path folder = harness.home / "Applications";
    // What a file system that ignores case does.
    fs::create_symlink("Work.app", folder / "WORK.app");
    const std::vector<std::string> words{"--kind",    "command", "--command",
                                         "/bin/true", "--name",  "WORK"};
    const CommandResult result = create(words);
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, StartsWith("“Work” already exists at " + folder.string()));
    EXPECT_TRUE(fs::is_symlink(folder / "WORK.app"));
}

TEST_F(CreateCommandTest, NeverReplacesAnApplicationThatIsNotAClone) {
    const auto app = makeAppBundle(harness.home / "Applications/Work.app");
    const auto before = treeOf(app);
    for (const char* name : {"Work", "Work ", " Work\n"}) {
        for (const char* more : {"--shared-home", "--replace"}) {
            const CommandResult result =
                create({"--kind", "command", "--command", "/bin/true", "--name", name, more});
            EXPECT_EQ(result.status, 1);
            EXPECT_THAT(result.errors, HasSubstr("not a clone"));
            EXPECT_EQ(treeOf(app), before);
        }
    }
}

TEST_F(CreateCommandTest, NeverReplacesAnythingElseOfThatName) {
    write(harness.home / "Projects/Work.app/src/main.c", "int main;");
    write(harness.home / "Files/Work.app", "a file");
    for (const char* folder : {"Projects", "Files"}) {
        const auto before = treeOf(harness.home / folder);
        for (const char* more : {"--shared-home", "--replace"}) {
            EXPECT_EQ(
                create(commandWords({"--output", (harness.home / folder).string(), more})).status,
                1);
            EXPECT_EQ(treeOf(harness.home / folder), before);
        }
    }
}

TEST_F(CreateCommandTest, ReplacesAWrapperThatWasNeverFinished) {
    write(harness.home / "Applications/Work.app/Contents/MacOS/runner", "half");
    fs::create_directories(harness.home / "Applications/Work.app/Contents/Resources");
    EXPECT_EQ(create(commandWords()).status, 0);
}

TEST_F(CreateCommandTest, RefusesToUsePartsOfTheCloneThatItReplaces) {
    const fs::path wrapper = create(commandWords()).json()["bundleURL"].get<std::string>();
    write(wrapper / "Contents/Resources/AppIcon.icns", "icon");
    const auto before = treeOf(wrapper);
    EXPECT_EQ(create({"--target", wrapper.string(), "--name", "Work", "--replace"}).status, 1);
    EXPECT_EQ(create(commandWords({"--replace", "--icon",
                                   (wrapper / "Contents/Resources/AppIcon.icns").string()}))
                  .status,
              1);
    EXPECT_EQ(harness
                  .run({"create", "--kind", "command", "--command", "/bin/true", "--name", "Work",
                        "--replace", "--runner", (wrapper / "Contents/MacOS/runner").string()})
                  .status,
              1);
    EXPECT_EQ(treeOf(wrapper), before);
}

TEST_F(CreateCommandTest, PrintsThePathEvenWhenTheCloneCantBeOpened) {
    harness.workspace.openError =
        PlatformError(std::make_error_code(std::errc::permission_denied), "/x/Work.app", "opened");
    const CommandResult result =
        harness.run({"create", "--runner", runnerProgram().string(), "--kind", "command",
                     "--command", "/bin/true", "--name", "Work", "--launch"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, (harness.home / "Applications/Work.app").string() + "\n");
}

TEST_F(CreateCommandTest, ATextThatCantBeWrittenLeavesTheOldCloneAlone) {
    configOf(commandWords());
    const auto before = treeOf(harness.home / "Applications");
    EXPECT_EQ(create(commandWords({"--replace", "--plist", "Key=\x01"})).status, 1);
    EXPECT_EQ(create(commandWords({"--replace", "--arg", "\xff"})).status, 1);
    EXPECT_EQ(treeOf(harness.home / "Applications"), before);
}

TEST_F(CreateCommandTest, NothingIsMadeIfTheOriginalsDataIsUnknown) {
    EXPECT_EQ(create(commandWords({"--seed"})).status, 2);
    makeAppBundle(harness.home / "Chat.app");
    const CommandResult result =
        create({"--target", (harness.home / "Chat.app").string(), "--name", "Seeded", "--seed"});
    EXPECT_EQ(result.status, 1);
    EXPECT_THAT(result.errors, HasSubstr("It is not known where "));
    EXPECT_FALSE(fs::exists(harness.home / "Applications/Seeded.app"));
    EXPECT_FALSE(fs::exists(harness.home / "QuorvelInstances"));
}

TEST_F(CreateCommandTest, LaunchesTheCloneWhenAsked) {
    const auto json = create(commandWords({"--launch"})).json();
    EXPECT_EQ(harness.workspace.opened,
              std::vector<fs::path>{json["bundleURL"].get<std::string>()});
    harness.workspace.opened.clear();
    EXPECT_EQ(create(commandWords({"--replace"})).status, 0);
    EXPECT_TRUE(harness.workspace.opened.empty());
}

} // namespace
} // namespace quorvel
