#include "QuorvelApp/model/FormTexts.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::Optional;
using Words = std::vector<std::string>;

TEST(FormTextsTest, EveryWordComesBackFromItsLine) {
    const Words words{"plain",      "two words", "",          "line\nbreak",  "\r\t",
                      "\"quoted\"", "C:\\new",   "\\",        "a\\\"b",       "ü\u2028x\u00A0y",
                      "\u202Ebidi", "{{x}}",     "it's '$x'", "--name=a \"b", "\\u0041"};
    EXPECT_THAT(splitOutsideQuotes(quotedWords(words)), Optional(words));
    for (const std::string& word : words) {
        EXPECT_THAT(splitOutsideQuotes(quotedWords({word})), Optional(Words{word})) << word;
    }
    EXPECT_THAT(splitOutsideQuotes(quotedWords({})), Optional(Words{}));
}

TEST(FormTextsTest, OnlyWordsThatNeedQuotesGetThem) {
    EXPECT_EQ(quotedWords({"--flag", "C:\\new", "it's", "{{instanceHome}}/x", "two words", "a\n"}),
              R"(--flag C:\new it's {{instanceHome}}/x "two words" "a\n")");
    EXPECT_EQ(quotedWords({"\u202E"}), R"("\u202e")") << "it would turn the line around";
}

TEST(FormTextsTest, QuotesKeepWhiteSpaceTogetherAnywhereInAWord) {
    EXPECT_THAT(splitOutsideQuotes(" a\t--x=\"b c\"d  \"\" \"\\\\\\\"\" \\n \"\\d\\u12\""),
                Optional(ElementsAre("a", "--x=b cd", "", "\\\"", "\\n", "\\d\\u12")));
}

TEST(FormTextsTest, AnOpenQuoteIsNotAValidLine) {
    EXPECT_EQ(splitOutsideQuotes("a \"b"), std::nullopt);
    EXPECT_EQ(splitOutsideQuotes("a \"b\\\""), std::nullopt);
}

TEST(FormTextsTest, EntriesThatALineCantHoldAreLeftOut) {
    const std::map<std::string, std::string> entries{
        {"A", "1"},   {"B", " x = y "},       {"C", "two\nlines"}, {" D", "key"},
        {"E=", "no"}, {"F", "\u2029"},        {"", "none"},        {"G", "\uFDD0"},
        {"H", ""},    {"I", "tab\tand\u00A0"}};
    EXPECT_EQ(keyValueText(entries), "A=1\nB= x = y \nH=\nI=tab\tand\u00A0");
}

TEST(FormTextsTest, WhatIsTooLongForAnEditorIsLeftOut) {
    std::map<std::string, std::string> entries{{"A", "1"}, {"B", std::string(1'000'000, 'x')}};
    EXPECT_EQ(keyValueText(entries), "A=1");
    for (int number = 0; number < 100; ++number) {
        entries["C" + std::to_string(number)] = std::string(9'000, 'x');
    }
    EXPECT_LT(keyValueText(entries).size(), 200'000U);
}

} // namespace
} // namespace quorvel
