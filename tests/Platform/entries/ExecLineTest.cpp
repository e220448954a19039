#include "Platform/entries/ExecLine.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace quorvel::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Words = std::vector<std::string>;

Words argumentsOf(const std::string& exec, const Words& items = {},
                  const ExecLine::Fields& fields = {}) {
    return ExecLine::parse(exec).toArguments(items, fields);
}

std::string whyNotParsed(const std::string& exec) {
    try {
        (void)ExecLine::parse(exec);
    } catch (const ExecLineError& error) {
        return error.description();
    }
    return "parsed";
}

std::string whyNotWritten(const Words& command) {
    try {
        (void)ExecLine::text(command);
    } catch (const ExecLineError& error) {
        return error.description();
    }
    return "written";
}

TEST(ExecLineTest, TakesWordsAndQuotesApart) {
    const ExecLine line =
        ExecLine::parse("\"/opt/My App/run\"  --name \"a \\\"b\\\" \\$c \\`\\\\\"");
    EXPECT_EQ(line.program, "/opt/My App/run");
    EXPECT_THAT(line.toArguments({}, {}), ElementsAre("--name", "a \"b\" $c `\\"));
    EXPECT_THAT(argumentsOf("a b\\ c 'd \\ e' f\"g\"h"), ElementsAre("b c", "d \\ e", "fgh"));
    EXPECT_THAT(argumentsOf("a \"\" ''"), ElementsAre("", ""));
}

TEST(ExecLineTest, RefusesWhatCanNotBeRun) {
    EXPECT_EQ(whyNotParsed("a \"b"), "a quote is never closed");
    EXPECT_EQ(whyNotParsed("a 'b"), "a quote is never closed");
    EXPECT_EQ(whyNotParsed("a \"b\\"), "a quote is never closed");
    EXPECT_EQ(whyNotParsed("a b\\"), "it ends with a backslash");
    for (const char* none : {"", "  ", "\"\"", "%U", "# comment", "env", "env A=b", "env -u A"}) {
        EXPECT_EQ(whyNotParsed(none), "no program is named") << none;
    }
    EXPECT_EQ(whyNotParsed(std::string((1U << 20U) + 1, '"')), "a quote is never closed");
}

TEST(ExecLineTest, ReplacesEachCodeByItsItems) {
    const Words items{"/tmp/a b", "https://example.org/%20?x"};
    EXPECT_THAT(argumentsOf("x %f y", items), ElementsAre("/tmp/a b", "y"));
    EXPECT_THAT(argumentsOf("x %F y", items), ElementsAre("/tmp/a b", "y"));
    EXPECT_THAT(argumentsOf("x %u", items), ElementsAre("/tmp/a b"));
    EXPECT_THAT(argumentsOf("x %U", items), ElementsAre("/tmp/a b", "https://example.org/%20?x"));
    EXPECT_THAT(argumentsOf("x --open=%u", items), ElementsAre("--open=/tmp/a b"));
    EXPECT_THAT(argumentsOf("x %f", {"file:///tmp/%C3%BC"}), ElementsAre("/tmp/ü"));
    EXPECT_THAT(argumentsOf("x %U", {"file://localhost/a%20b", "file://server/a"}),
                ElementsAre("/a b", "file://server/a"));
    EXPECT_THAT(argumentsOf("x %f", {"https://example.org"}), IsEmpty());
    EXPECT_THAT(argumentsOf("x %f", {"file:///a%00b"}), IsEmpty());
    EXPECT_THAT(argumentsOf("x %f", {"file:///a%2"}), IsEmpty());
    EXPECT_THAT(argumentsOf("x %f", {"file:///a%+1"}), IsEmpty());
}

TEST(ExecLineTest, WithoutItemsTheirCodesDisappear) {
    EXPECT_THAT(argumentsOf("telegram-desktop -- %u"), ElementsAre("--"));
    EXPECT_THAT(argumentsOf("x %f %F %u %U y"), ElementsAre("y"));
    EXPECT_THAT(argumentsOf("x --open=%u"), ElementsAre("--open="));
    EXPECT_THAT(argumentsOf("x \"%u\""), ElementsAre("")) << "what is quoted counts";
}

TEST(ExecLineTest, WithoutCodesTheFirstFileComesLast) {
    EXPECT_THAT(argumentsOf("x -a", {"/b", "/c"}), ElementsAre("-a", "/b"));
    EXPECT_THAT(argumentsOf("x -a", {"https://example.org"}), ElementsAre("-a"));
}

TEST(ExecLineTest, FillsInTheOtherCodes) {
    const ExecLine::Fields fields{"my-icon", "My App", "/usr/share/applications/a.desktop"};
    EXPECT_THAT(
        argumentsOf("x %i %c %k 100%%", {}, fields),
        ElementsAre("--icon", "my-icon", "My App", "/usr/share/applications/a.desktop", "100%"));
    EXPECT_THAT(argumentsOf("x %i %c %k"), IsEmpty());
    EXPECT_THAT(argumentsOf("x %d %D %n %N %v %m %q", {"/b"}, fields), ElementsAre("/b"))
        << "deprecated and unknown ones disappear";
    EXPECT_THAT(argumentsOf("x %c", {}, {"", "50 %U off", ""}), ElementsAre("50 %U off"))
        << "a text that is filled in is not read again";
    EXPECT_EQ(ExecLine::parse("/opt/100%%/x").program, "/opt/100%/x");
}

TEST(ExecLineTest, KnowsWhetherOneStartTakesSeveral) {
    EXPECT_TRUE(ExecLine::parse("x %F").takesSeveral());
    EXPECT_TRUE(ExecLine::parse("x %%%U").takesSeveral());
    EXPECT_FALSE(ExecLine::parse("x %u").takesSeveral());
    EXPECT_FALSE(ExecLine::parse("x %%U %").takesSeveral());
    EXPECT_FALSE(ExecLine::parse("x").takesSeveral());
}

TEST(ExecLineTest, TakesAnEnvOffTheFront) {
    const ExecLine line =
        ExecLine::parse("env BAMF_HINT=/a%%b \"LANG=de DE\" /usr/bin/app --x=1 %U");
    EXPECT_THAT(line.environment, ElementsAre("BAMF_HINT=/a%b", "LANG=de DE"));
    EXPECT_EQ(line.program, "/usr/bin/app");
    EXPECT_THAT(line.toArguments({}, {}), ElementsAre("--x=1"));
    const ExecLine usual =
        ExecLine::parse("/usr/bin/env -u A --unset=B -uC --unset D -- E=f g h=i");
    EXPECT_THAT(usual.unset, ElementsAre("A", "B", "C", "D"));
    EXPECT_THAT(usual.environment, ElementsAre("E=f"));
    EXPECT_EQ(usual.program, "g");
    EXPECT_THAT(usual.toArguments({}, {}), ElementsAre("h=i"));
    const ExecLine twice = ExecLine::parse("env A=1 env B=2 c");
    EXPECT_THAT(twice.environment, ElementsAre("A=1", "B=2"));
    EXPECT_EQ(twice.program, "c");
    for (const char* option : {"-i", "-", "-S", "-C", "--chdir=/", "--ignore-environment"}) {
        EXPECT_EQ(whyNotParsed(std::string("env ") + option + " a"),
                  std::string("“env” is given an option that can’t be followed: ") + option);
    }
    EXPECT_EQ(ExecLine::parse("environment A=b").program, "environment");
    EXPECT_EQ(ExecLine::parse("env%u A=b c").program, "c") << "its name without the code";
}

TEST(ExecLineTest, EngineArgumentsComeDirectlyAfterTheProgram) {
    const auto index = [](const std::string& exec) {
        const ExecLine line = ExecLine::parse(exec);
        return line.engineArgumentsIndex(line.toArguments({}, {}));
    };
    EXPECT_EQ(index("telegram-desktop -- %u"), 0U);
    EXPECT_EQ(index("kate -b %U"), 0U);
    EXPECT_EQ(index("/usr/bin/flatpak run --branch=stable --command=app --file-forwarding "
                    "org.example.App @@u %U @@"),
              5U);
    EXPECT_EQ(index("flatpak run --branch=stable"), 2U);
    EXPECT_EQ(index("flatpak list --app x"), 0U);
    EXPECT_EQ(index("flatpak"), 0U);
}

TEST(ExecLineTest, WritesACommandThatReadsBack) {
    const Words command{"/opt/My \"best\" $app`s\\path/100%U",
                        "plain",
                        "",
                        " ",
                        "a b",
                        "%U",
                        "50%",
                        "it's",
                        "~/x",
                        "a=b",
                        "\t",
                        "#",
                        "ü \u202E",
                        "<>|&;*?()"};
    const std::string text = ExecLine::text(command, "%U");
    const ExecLine line = ExecLine::parse(text);
    EXPECT_EQ(line.program, command.front());
    Words expected(command.begin() + 1, command.end());
    EXPECT_EQ(line.toArguments({}, {}), expected) << text;
    expected.emplace_back("https://example.org");
    EXPECT_EQ(line.toArguments({"https://example.org"}, {}), expected);
    EXPECT_EQ(ExecLine::text({"/usr/bin/a", "--b=c"}), "/usr/bin/a --b=c")
        << "no quotes without need";
    for (const char reserved : std::string(" \t\"'\\><~|&;$*?#()`")) {
        EXPECT_TRUE(ExecLine::text({std::string("a") + reserved}).starts_with('"')) << reserved;
    }
}

TEST(ExecLineTest, RefusesToWriteWhatTheFormatCanNotHold) {
    EXPECT_EQ(whyNotWritten({"/a\nb"}), "a line break can’t be written into a menu entry");
    EXPECT_EQ(whyNotWritten({"/a", "b\r"}), "a line break can’t be written into a menu entry");
    EXPECT_EQ(whyNotWritten({"/a", std::string("b\0", 2)}),
              "a NUL byte can’t be written into a menu entry");
    EXPECT_EQ(whyNotWritten({"/a=b/c"}), "the program’s path contains an equals sign");
    EXPECT_EQ(whyNotWritten({}), "no program is named");
    EXPECT_EQ(whyNotWritten({""}), "no program is named");
}

} // namespace
} // namespace quorvel::testing
