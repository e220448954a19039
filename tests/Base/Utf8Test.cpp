#include "Base/Utf8.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace std::string_literals;

TEST(Utf8Test, WellFormedTextIsUtf8) {
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8("plain\0text"s));
    EXPECT_TRUE(isUtf8("é 語 😀"));
}

TEST(Utf8Test, MalformedTextIsNotUtf8) {
    EXPECT_FALSE(isUtf8("\xE9t\xE9"));
    EXPECT_FALSE(isUtf8("cut off \xE8\xAA"));
    EXPECT_FALSE(isUtf8("\xC0\xAF")) << "a longer form than needed";
    EXPECT_FALSE(isUtf8("\xED\xA0\x80")) << "half of a surrogate pair";
    EXPECT_FALSE(isUtf8("\xF4\x90\x80\x80")) << "beyond the last scalar";
}

TEST(Utf8Test, EveryLatin1ByteHasItsCharacter) {
    EXPECT_EQ(utf8FromLatin1("\xE9t\xE9"), "été");
    EXPECT_EQ(utf8FromLatin1("\xFF"), "ÿ");
    EXPECT_EQ(utf8FromLatin1("plain"), "plain");
}

} // namespace
} // namespace quorvel
