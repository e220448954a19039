#include "Base/UnsafeText.h"

#include <gtest/gtest.h>
#include <string_view>

namespace quorvel {
namespace {

// Returns the text with "!" for each unsafe character.
std::u32string marked(std::u32string_view text) {
    UnsafeText unsafe;
    std::u32string result;
    for (std::size_t index = 0; index < text.size(); ++index) {
        const std::u32string_view following = text.substr(index + 1, UnsafeText::lookAhead);
        result += unsafe.isUnsafeForDisplay(text[index], following) ? U'!' : text[index];
    }
    return result;
}

void expectSafe(std::u32string_view text) {
    EXPECT_TRUE(marked(text) == text);
}

void expectUnsafe(char32_t scalar) {
    EXPECT_TRUE(marked(U"a" + std::u32string(1, scalar) + U"b") == U"a!b")
        << std::hex << static_cast<unsigned>(scalar);
}

TEST(UnsafeTextTest, OrdinaryTextOfEveryScriptIsSafe) {
    expectSafe(U"Café “Work” – e\u0301 工作 😀 שלום नमस्ते");
}

TEST(UnsafeTextTest, ControlCharactersAreUnsafe) {
    for (const char32_t scalar : {0x0U, 0x7U, 0xAU, 0x1BU, 0x7FU, 0x80U, 0x9BU, 0x9FU, 0x2028U,
                                  0x61CU, 0x200EU, 0x200FU, 0x202AU, 0x202EU, 0x2066U, 0x2069U}) {
        expectUnsafe(scalar);
    }
}

TEST(UnsafeTextTest, InvisibleCharactersAreUnsafe) {
    for (const char32_t scalar :
         {0xADU,   0x34FU,  0x115FU, 0x1160U,  0x17B4U,  0x180EU,  0x200BU,  0x200CU,  0x200DU,
          0x2060U, 0x2064U, 0x206FU, 0x2800U,  0x3164U,  0xFE00U,  0xFE0EU,  0xFE0FU,  0xFEFFU,
          0xFFA0U, 0xFFF9U, 0xFFFBU, 0x1D173U, 0xE0001U, 0xE0041U, 0xE007FU, 0xE0100U, 0xE01EFU}) {
        expectUnsafe(scalar);
    }
}

TEST(UnsafeTextTest, JoinersAreSafeBetweenLettersOfJoiningScripts) {
    expectSafe(U"می\u200Cخواهم"); // Persian
    expectSafe(U"क्\u200Dष");      // Hindi
    expectSafe(U"ന്\u200D");       // Malayalam, at the end of a word
    EXPECT_TRUE(marked(U"می\u200C") == U"می!");
    EXPECT_TRUE(marked(U"می\u200C\u200Cخ") == U"می!!خ");
    EXPECT_TRUE(marked(U"\u200Dक") == U"!क");
}

TEST(UnsafeTextTest, JoinersAndSelectorsAreSafeInEmoji) {
    expectSafe(U"👨\u200D👩\u200D👧\u200D👦");
    expectSafe(U"❤\uFE0F\u200D🔥");
    expectSafe(U"👩🏽\u200D⚕\uFE0F");
    expectSafe(U"1\uFE0F\u20E3 ©\uFE0F ☎\uFE0E");
    EXPECT_TRUE(marked(U"👨\u200D") == U"👨!");
    EXPECT_TRUE(marked(U"👨\u200Dx") == U"👨!x");
    EXPECT_TRUE(marked(U"1\uFE0F") == U"1!");
    EXPECT_TRUE(marked(U"☎\uFE0E\uFE0E") == U"☎\uFE0E!");
}

TEST(UnsafeTextTest, VariationSelectorsAreSafeAfterCharactersThatVary) {
    expectSafe(U"葛\U000E0100飾");
    expectSafe(U"\u1820\u180B");
    EXPECT_TRUE(marked(U"x\U000E0100") == U"x!");
}

// Returns the text as tags, with "." for the cancel tag.
std::u32string tags(std::string_view text) {
    std::u32string result;
    for (const char letter : text) {
        result += letter == '.' ? U'\U000E007F' : 0xE0000 + static_cast<char32_t>(letter);
    }
    return result;
}

TEST(UnsafeTextTest, TagsAreSafeInTheFlagsThatUseThem) {
    for (const char* flag : {"gbeng.", "gbsct.", "gbwls."}) {
        expectSafe(U"a🏴" + tags(flag) + U"b🏴" + tags(flag));
    }
    EXPECT_TRUE(marked(U"😀" + tags("gbeng.")) == U"😀!!!!!!");
}

TEST(UnsafeTextTest, OtherTagsAreUnsafeEvenAfterAFlag) {
    for (const char* hidden : {"gbeng", "gben", "gben.", "ustx.", "hidden text.", "g", "."}) {
        const std::u32string marks(std::string_view(hidden).size(), U'!');
        EXPECT_TRUE(marked(U"🏴" + tags(hidden)) == U"🏴" + marks) << hidden;
        EXPECT_TRUE(marked(U"🏴" + tags(hidden) + U"x") == U"🏴" + marks + U"x") << hidden;
    }
    EXPECT_TRUE(marked(U"🏴" + tags("gbeng.more")) == U"🏴" + tags("gbeng.") + U"!!!!");
}

} // namespace
} // namespace quorvel
