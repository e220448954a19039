#include "WebHost/OneAnswer.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace quorvel {
namespace {

class OneAnswerTest : public ::testing::Test {
protected:
    [[nodiscard]] OneAnswer<int, std::string> answer() {
        return {[this](int number, const std::string& text) {
                    given_.push_back(std::to_string(number) + text);
                },
                0, "refused"};
    }

    std::vector<std::string> given_{};
};

TEST_F(OneAnswerTest, TheFirstAnswerCountsAndOthersDoNothing) {
    {
        const auto first = answer();
        const auto second = first;
        first(1, "yes");
        second(2, "again");
        EXPECT_EQ(given_, std::vector<std::string>{"1yes"});
    }
    EXPECT_EQ(given_, std::vector<std::string>{"1yes"});
}

TEST_F(OneAnswerTest, WithoutAnAnswerTheLastCopyRefuses) {
    std::function<void()> kept;
    {
        const auto first = answer();
        kept = [first] {};
    }
    EXPECT_TRUE(given_.empty());
    kept = nullptr;
    EXPECT_EQ(given_, std::vector<std::string>{"0refused"});
}

TEST_F(OneAnswerTest, AnAnswerGivenWhileAnsweringIsTheSecond) {
    std::vector<int> given;
    std::function<void(int)> again;
    const OneAnswer<int> answer(
        [&](int number) {
            given.push_back(number);
            again(number + 1);
        },
        0);
    again = answer;
    answer(1);
    again = nullptr;
    EXPECT_EQ(given, std::vector<int>{1});
}

} // namespace
} // namespace quorvel
