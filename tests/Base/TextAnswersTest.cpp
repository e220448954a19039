// Compares with the results of the platform's own text functions.
#include "Base/Text.h"
#include "tests/support/TemporaryHome.h"

#include <nlohmann/json.hpp>

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using nlohmann::json;

class TextAnswersTest : public ::testing::Test {
protected:
    static std::string text(const json& row, const char* key) { return row.at(key); }

    const json answers = json::parse(testing::read(QUORVEL_TEST_DATA "/text-answers.json"));
    const std::string locale = "en_US";
};

TEST_F(TextAnswersTest, AreEqualForCaseTrimmingAndLetters) {
    ASSERT_EQ(answers.at("strings").size(), 350U);
    for (const json& row : answers.at("strings")) {
        const std::string given = text(row, "text");
        EXPECT_EQ(Text::upperCased(given), text(row, "upperCased")) << row;
        EXPECT_EQ(Text::capitalizingWords(given), text(row, "capitalized")) << row;
        EXPECT_EQ(Text::replacingNonAlphanumerics(given, '-'), text(row, "alphanumericsKept"))
            << row;
        EXPECT_EQ(Text::trimmingWhitespace(given), text(row, "trimmed")) << row;
        EXPECT_EQ(Text::trimmingWhitespaceAndNewlines(given), text(row, "trimmedWithNewlines"))
            << row;
    }
}

TEST_F(TextAnswersTest, AreEqualForSearches) {
    ASSERT_EQ(answers.at("contains").size(), 2063U);
    for (const json& row : answers.at("contains")) {
        EXPECT_EQ(Text::containsIgnoringCase(text(row, "text"), text(row, "sought"), locale),
                  row.at("contains").get<bool>())
            << row;
    }
}

TEST_F(TextAnswersTest, AreEqualForTheOrderOfNames) {
    const auto names = answers.at("order").get<std::vector<std::string>>();
    ASSERT_EQ(names.size(), 39U);
    for (std::size_t second = 0; second < names.size(); ++second) {
        for (std::size_t first = 0; first < second; ++first) {
            const std::vector<std::size_t> order =
                Text::sortedOrder({names[second], names[first]}, locale);
            const bool equal = Text::upperCased(names[first]) == Text::upperCased(names[second]);
            EXPECT_EQ(order.front(), equal ? 0U : 1U) << names[first] << " " << names[second];
        }
    }
}

} // namespace
} // namespace quorvel
