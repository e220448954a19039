// Presses Tab in real shells, among names that were made to harm.
#include "Base/PathText.h"
#include "Platform/files/FileSystem.h"
#include "tests/CommandLine/InteractiveShell.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

using Words = std::vector<std::string>;

const Words names{
    "Plain",
    "$(touch PWNED)",
    "`touch PWNED`",
    "${x:=$(touch PWNED)}",
    "a;touch PWNED;b",
    "a&&touch PWNED|cat>PWNED<x",
    R"(it's "so" called)",
    "two  blanks ",
    "line\nbreak",
    "$(touch\nPWNED)",
    "tab\tstop",
    R"(back\slash\$(touch PWNED))",
    "*",
    "?[a-z]{x,y}",
    "-rf",
    "--yes",
    "!!",
    "#hash",
    "~root",
    "$HOME",
    "a:b=c@d%e+f,g",
    "^a^b",
    "Café 工作 😀",
    "\x1b[2Jescape",
};

// A shell with the completions, and a program of the command's name that only writes down with
// which words it was called.
class CompletionTest : public ::testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        const fs::path shell = "/bin/" + GetParam();
        if (!isExecutableFile(shell)) {
            GTEST_SKIP() << GetParam() << " is not installed";
        }
        write(folder_ / "bin/quorvelctl", "#!/bin/sh\nprintf '%s\\0' \"$@\" >\"$ANSWER.part\"\n"
                                          "mv \"$ANSWER.part\" \"$ANSWER\"\n");
        makeExecutable(folder_ / "bin/quorvelctl");
        fs::create_directories(applications_);
        fs::create_directories(work_);
        startShell("C.UTF-8");
    }

    void startShell(const std::string& language) {
        const fs::path shell = "/bin/" + GetParam();
        const bool bash = isBash();
        shell_.emplace(bash ? Words{shell, "--norc", "--noprofile", "-i"}
                            : Words{shell, "-f", "-i"},
                       Environment{{"HOME", home_.string()},
                                   {"PATH", (folder_ / "bin").string() + ":/usr/bin:/bin"},
                                   {"TERM", "xterm"},
                                   {"LANG", language},
                                   {"INPUTRC", "/dev/null"},
                                   {"ANSWER", answer_.string()}},
                       work_);
        shell_->type(bash ? "source '" QUORVEL_SOURCE_DIR "/packaging/completions/quorvelctl.bash'"
                          : "fpath=('" QUORVEL_SOURCE_DIR "/packaging/completions' $fpath); "
                            "autoload -Uz compinit; compinit -D -u");
        ASSERT_THAT(called("\rquorvelctl ready\r"), ElementsAre("ready"));
    }

    [[nodiscard]] static bool isBash() { return GetParam() == "bash"; }

    // The words that the program was called with after these keys.
    Words called(std::string_view keys) {
        fs::remove(answer_);
        shell_->type(keys);
        if (!shell_->goOnUntil([&] { return itemExists(answer_); })) {
            ADD_FAILURE() << "The program was never called. The screen: " << shell_->screen();
            shell_->type("\x03");
        }
        Words words;
        std::string bytes = testing::read(answer_);
        for (std::size_t end = bytes.find('\0'); end != std::string_view::npos;
             end = bytes.find('\0')) {
            words.push_back(bytes.substr(0, end));
            bytes.erase(0, end + 1);
        }
        return words;
    }

    fs::path addClone(const std::string& name) {
        return makeWrapper(applications_ / (name + ".app"), name);
    }

    // Nothing but what the test itself has put there.
    void expectNothingDone() const {
        for (const auto& item : fs::recursive_directory_iterator(folder_.path())) {
            EXPECT_NE(item.path().filename(), "PWNED") << item.path();
        }
    }

    TemporaryFolder folder_{};
    fs::path home_ = folder_ / "home";
    fs::path applications_ = home_ / "Applications";
    fs::path work_ = folder_ / "work";
    fs::path answer_ = folder_ / "answer";
    std::optional<InteractiveShell> shell_{};
};

TEST_P(CompletionTest, HandTheNameOfAnyCloneToTheProgramAsItIs) {
    for (const std::string& name : names) {
        const fs::path wrapper = addClone(name);
        EXPECT_THAT(called("quorvelctl delete \t\r"), ElementsAre("delete", wrapper.string()));
        expectNothingDone();
        fs::remove_all(wrapper);
    }
}

TEST_P(CompletionTest, GoOnFromWhatHasBeenTyped) {
    const fs::path wrapper = addClone("My $(touch PWNED) 'app'");
    for (const char* start : {"~/Applications/", "~/Applications/My", "~/Applications/My\\ \\$"}) {
        EXPECT_THAT(called("quorvelctl open " + std::string(start) + "\t\r"),
                    ElementsAre("open", wrapper.string()))
            << start;
    }
    expectNothingDone();
}

TEST_P(CompletionTest, GoOnWithinQuotes) {
    for (const std::string& name : names) {
        const fs::path wrapper = addClone(name);
        for (const char* quote : {"'", "\""}) {
            const std::string start = quote + applications_.string() + "/";
            EXPECT_THAT(called("quorvelctl show " + start + "\t\x05\r"),
                        ElementsAre("show", wrapper.string()));
        }
        fs::remove_all(wrapper);
    }
    expectNothingDone();
}

TEST_P(CompletionTest, StopWhereSeveralNamesPart) {
    for (const std::string& name : names) {
        const fs::path one = addClone(name + " one");
        const fs::path two = addClone(name + " $two");
        // Bash can't continue after a control character.
        const auto* const control = std::find_if(name.data(), name.data() + name.size(),
                                                 [](char c) { return c >= 0 && c < ' '; });
        const bool whole = !isBash() || control == name.data() + name.size();
        const std::string common = whole ? name + " " : std::string(name.data(), control);
        EXPECT_THAT(called("quorvelctl migrate \t\t\r"),
                    ElementsAre("migrate", (applications_ / common).string()));
        fs::remove_all(one);
        fs::remove_all(two);
    }
    expectNothingDone();
}

TEST_P(CompletionTest, ContinueAfterCharactersThatBreakWords) {
    for (const char* start : {"a:", "a=", "a@", "a::b=$x:", ":"}) {
        const fs::path one = addClone(start + std::string("one it's"));
        const fs::path two = addClone(start + std::string("two it's"));
        EXPECT_THAT(called("quorvelctl open \tt\t\r"), ElementsAre("open", two.string()));
        EXPECT_THAT(called("quorvelctl open \to\t\r"), ElementsAre("open", one.string()));
        fs::remove_all(one);
        fs::remove_all(two);
    }
    expectNothingDone();
}

TEST_P(CompletionTest, NeverStopWithinACharacter) {
    if (!isBash()) {
        GTEST_SKIP() << "what zsh's own editor makes of names in the C locale is not ours";
    }
    startShell("C");
    addClone("Caf\u00e9");
    addClone("Caf\u00e8");
    EXPECT_THAT(called("quorvelctl open \t\t\r"),
                ElementsAre("open", (applications_ / "Caf").string()));
}

TEST_P(CompletionTest, OfferNoOtherApplication) {
    fs::create_directories(applications_ / "Other.app/Contents/Resources");
    EXPECT_THAT(called("quorvelctl open \t\r"), ElementsAre("open"));
}

TEST_P(CompletionTest, HandTheNameOfAnyFileToTheProgramAsItIs) {
    for (const std::string& name : names) {
        fs::create_directories(work_ / name);
        const bool option = name.starts_with("-");
        const Words words =
            called(option ? "quorvelctl inspect ./\t\r" : "quorvelctl inspect \t\r");
        ASSERT_EQ(words.size(), 2U) << name;
        EXPECT_EQ(withoutTrailingSlashes(words[1]), option ? "./" + name : name);
        expectNothingDone();
        fs::remove_all(work_ / name);
    }
}

TEST_P(CompletionTest, GoOnFromWhatTheyThemselvesHaveSpelled) {
    if (!isBash()) {
        GTEST_SKIP() << "zsh stops after its own $''";
    }
    const fs::path file = work_ / "a\n\t\\\"?\0017/b\n/$(touch PWNED)";
    write(file, "");
    EXPECT_THAT(called("quorvelctl inspect \t\t\t\r"),
                ElementsAre("inspect", file.lexically_relative(work_).string()));
    expectNothingDone();
}

TEST_P(CompletionTest, NeverAddANameToOneThatTheEditorCantRead) {
    write(work_ / "it's\n/file", "");
    EXPECT_THAT(called("quorvelctl inspect \t\t\r"),
                ElementsAre("inspect", isBash() ? "it's\n/" : "it's\n"));
}

TEST_P(CompletionTest, NeverOfferAFileThatWouldBeTakenForAnOption) {
    fs::create_directories(work_ / "--json");
    const Words words = called("quorvelctl inspect \t\r");
    ASSERT_FALSE(words.empty());
    EXPECT_TRUE(words == Words{"inspect"} || words == (Words{"inspect", "./--json/"}))
        << words.back();
}

TEST_P(CompletionTest, KnowCommandsOptionsAndTheirValues) {
    EXPECT_THAT(called("quorvelctl insp\t\r"), ElementsAre("inspect"));
    EXPECT_THAT(called("quorvelctl delete --incl\t\r"), ElementsAre("delete", "--including-data"));
    EXPECT_THAT(called("quorvelctl create --strategy wrap\t\r"),
                ElementsAre("create", "--strategy", "wrapper-identity"));
}

INSTANTIATE_TEST_SUITE_P(Shells, CompletionTest, ::testing::Values("bash", "zsh"),
                         [](const auto& test) { return test.param; });

} // namespace
} // namespace quorvel::testing
