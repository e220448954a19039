#include "Base/TerminalText.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(TerminalTextTest, OrdinaryTextOfEveryScriptIsUnchanged) {
    EXPECT_EQ(terminalText("Café “Work” – 工作 😀"), "Café “Work” – 工作 😀");
}

TEST(TerminalTextTest, ControlCharactersAreEscaped) {
    EXPECT_EQ(terminalText("a\x1b[2Jb"), "a\\u{1b}[2Jb");
    EXPECT_EQ(terminalText("line\nbreak\ttab\rreturn"), "line\\nbreak\\ttab\\u{d}return");
    EXPECT_EQ(terminalText("\x7f\xc2\x9b"), "\\u{7f}\\u{9b}");
    EXPECT_EQ(terminalText(std::string_view("nul\0here", 8)), "nul\\u{0}here");
}

TEST(TerminalTextTest, BidirectionalControlCharactersAreEscaped) {
    EXPECT_EQ(terminalText("exe\u202egnp"), "exe\\u{202e}gnp");
    EXPECT_EQ(terminalText("\u2066x\u2069"), "\\u{2066}x\\u{2069}");
}

TEST(TerminalTextTest, InvalidBytesAreEscaped) {
    EXPECT_EQ(terminalText("a\xff\xfe"
                           "b\xc3"),
              "a\\xff\\xfeb\\xc3");
}

TEST(TerminalTextTest, InvisibleCharactersAreEscaped) {
    EXPECT_EQ(terminalText("Work\u200b \u2060\u00ad\ufeff"),
              "Work\\u{200b} \\u{2060}\\u{ad}\\u{feff}");
    EXPECT_EQ(terminalText("\U000E0041"), "\\u{e0041}");
    EXPECT_EQ(terminalText("👨\u200d👩 می\u200cخواهم"), "👨\u200d👩 می\u200cخواهم");
}

TEST(TerminalTextTest, FlagsStayWhole) {
    const std::string wales = "🏴\U000E0067\U000E0062\U000E0077\U000E006C\U000E0073\U000E007F";
    EXPECT_EQ(terminalText(wales + wales + "."), wales + wales + ".");
    EXPECT_EQ(terminalText("🏴\U000E0067\U000E0062"), "🏴\\u{e0067}\\u{e0062}");
}

TEST(TerminalTextTest, LongTextIsCutBetweenCharacters) {
    EXPECT_EQ(terminalText("工作工作", 4), "工作工作");
    EXPECT_EQ(terminalText("工作工作", 3), "工作工…");
    EXPECT_EQ(terminalText("\x1b\x1b\x1b", 2), "\\u{1b}\\u{1b}…");
    EXPECT_EQ(terminalText(std::string(longestDisplayed, 'x')), std::string(longestDisplayed, 'x'));
    EXPECT_EQ(terminalText(std::string(1'000'000, 'x')), std::string(longestDisplayed, 'x') + "…");
}

TEST(TerminalTextTest, JsonForTerminalsEscapesUnsafeCharacters) {
    EXPECT_EQ(escapingUnsafe("{\n  \"a\": \"\x7f\u009b\u202e\u200b\"\n}"),
              "{\n  \"a\": \"\\u007f\\u009b\\u202e\\u200b\"\n}");
    EXPECT_EQ(escapingUnsafe("\"\U000E0041\""), "\"\\udb40\\udc41\"");
    EXPECT_EQ(escapingUnsafe("\"Café 工作 😀\""), "\"Café 工作 😀\"");
    const std::string long_(100'000, 'x');
    EXPECT_EQ(escapingUnsafe(long_ + "é"), long_ + "é");
}

TEST(TerminalTextTest, ControlsAndBrokenBytesCanBeLeftOut) {
    EXPECT_EQ(withoutControls("a\nb\t\u202Ec\u2069\u200F\u061C\u0085d"), "abcd");
    EXPECT_EQ(withoutControls("é \u200B\u200D 👩‍👧"), "é \u200B\u200D 👩‍👧")
        << "nothing else";
    EXPECT_EQ(withoutControls("a\xFF\xC3(b"), "a(b");
    EXPECT_EQ(withoutControls(""), "");
}

} // namespace
} // namespace quorvel
