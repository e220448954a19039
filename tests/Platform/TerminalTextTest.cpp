#include "Platform/TerminalText.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(TerminalText, OrdinaryTextOfEveryScriptStays) {
    EXPECT_EQ(terminalText("Café “Work” – 工作 😀"), "Café “Work” – 工作 😀");
}

TEST(TerminalText, ControlCharactersAreShownNotSent) {
    EXPECT_EQ(terminalText("a\x1b[2Jb"), "a\\u{1b}[2Jb");
    EXPECT_EQ(terminalText("line\nbreak\ttab\rreturn"), "line\\nbreak\\ttab\\u{d}return");
    EXPECT_EQ(terminalText("\x7f\xc2\x9b"), "\\u{7f}\\u{9b}");
    EXPECT_EQ(terminalText(std::string_view("nul\0here", 8)), "nul\\u{0}here");
}

TEST(TerminalText, CharactersThatTurnTheWritingDirectionAreShown) {
    EXPECT_EQ(terminalText("exe\u202egnp"), "exe\\u{202e}gnp");
    EXPECT_EQ(terminalText("\u2066x\u2069"), "\\u{2066}x\\u{2069}");
}

TEST(TerminalText, BytesThatAreNoTextAreShownAsNumbers) {
    EXPECT_EQ(terminalText("a\xff\xfe"
                           "b\xc3"),
              "a\\xff\\xfeb\\xc3");
}

} // namespace
} // namespace quorvel
