#include "WebHost/Pages/LoadGate.h"

#include <gmock/gmock.h>

#include <vector>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class LoadGateTest : public ::testing::Test {
protected:
    [[nodiscard]] LoadGate gate(bool isClosed) {
        return {isClosed,
                {[this](const std::string& address) { loaded_.push_back(address); },
                 [this](HostQuestion question) { questions_.push_back(std::move(question)); },
                 [this] { ++settingsShown_; }}};
    }

    std::vector<std::string> loaded_{};
    std::vector<HostQuestion> questions_{};
    int settingsShown_ = 0;
};

TEST_F(LoadGateTest, AnOpenOneAsksNothing) {
    LoadGate open = gate(false);
    open.load("a");
    open.open();
    EXPECT_THAT(loaded_, ElementsAre("a"));
    EXPECT_THAT(questions_, IsEmpty());
}

TEST_F(LoadGateTest, NothingIsLoadedBeforeTheUserAgrees) {
    LoadGate closed = gate(true);
    closed.load("a");
    closed.load("b");
    ASSERT_EQ(questions_.size(), 1U);
    EXPECT_EQ(questions_.front().text, LoadGate::unreadableFile);
    EXPECT_THAT(loaded_, IsEmpty());
    questions_.front().answered(true);
    EXPECT_THAT(loaded_, ElementsAre("b")) << "the last one";
    closed.load("c");
    EXPECT_THAT(loaded_, ElementsAre("b", "c"));
    EXPECT_EQ(questions_.size(), 1U);
}

TEST_F(LoadGateTest, TheUserIsToldAnotherReason) {
    LoadGate closed(true,
                    {[](const std::string&) {},
                     [this](HostQuestion question) { questions_.push_back(std::move(question)); },
                     [] {}},
                    "No proxy here.");
    closed.load("a");
    ASSERT_EQ(questions_.size(), 1U);
    EXPECT_EQ(questions_.front().text, "No proxy here.");
}

TEST_F(LoadGateTest, AnotherAnswerKeepsItClosed) {
    LoadGate closed = gate(true);
    closed.load("a");
    questions_.back().answered(std::nullopt);
    EXPECT_EQ(settingsShown_, 0);
    closed.load("a");
    ASSERT_EQ(questions_.size(), 2U) << "the bar was closed";
    questions_.back().answered(false);
    EXPECT_EQ(settingsShown_, 1);
    EXPECT_TRUE(closed.isClosed());
    EXPECT_THAT(loaded_, IsEmpty());
    closed.open();
    closed.open();
    EXPECT_THAT(loaded_, ElementsAre("a")) << "the settings can be used now";
}

} // namespace
} // namespace quorvel
