#include "WebHost/Questions/PermissionQuestions.h"

#include "WebHost/Pages/FloodCaps.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <deque>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr const char* site = "https://example.com";

// A user who answers when the test says so.
class PermissionQuestionsTest : public ::testing::Test {
protected:
    void ask(const std::string& origin, const std::string& kind) {
        questions_.decide(origin, kind, origin + " wants " + kind, [this, kind](bool isAllowed) {
            answers_.push_back(kind + (isAllowed ? ": yes" : ": no"));
        });
    }

    void answer(std::optional<bool> answer) {
        ASSERT_FALSE(shown_.empty());
        const HostQuestion question = std::move(shown_.front());
        shown_.pop_front();
        question.answered(answer);
    }

    TemporaryFolder folder_;
    PermissionStore store_{folder_.path(), folder_ / "permissions.json"};
    std::deque<HostQuestion> shown_{};
    std::size_t most_ = 5;
    int closed_ = 0;
    std::vector<std::string> answers_{};
    PermissionQuestions questions_{store_,
                                   [this](HostQuestion question) {
                                       if (shown_.size() >= most_) {
                                           return false;
                                       }
                                       shown_.push_back(std::move(question));
                                       return true;
                                   },
                                   [this] { ++closed_; }};
};

TEST_F(PermissionQuestionsTest, AnAnswerIsRememberedForItsOriginAndKind) {
    ask(site, "camera");
    EXPECT_THAT(answers_, IsEmpty()) << "not before the user has answered";
    EXPECT_EQ(shown_.front().text, "https://example.com wants camera");
    answer(true);
    ask(site, "camera");
    EXPECT_THAT(answers_, ElementsAre("camera: yes", "camera: yes"));
    EXPECT_THAT(shown_, IsEmpty());
    ask(site, "location");
    ask("https://other.example", "camera");
    EXPECT_EQ(shown_.size(), 2U);
    answer(false);
    ask(site, "location");
    EXPECT_THAT(answers_,
                ElementsAre("camera: yes", "camera: yes", "location: no", "location: no"));
}

TEST_F(PermissionQuestionsTest, WhatIsAskedSeveralTimesIsOneQuestion) {
    for (int time = 0; time < 20; ++time) {
        ask(site, "location");
    }
    EXPECT_EQ(shown_.size(), 1U);
    answer(false);
    EXPECT_EQ(answers_.size(), 20U);
    EXPECT_EQ(answers_.back(), "location: no");
}

TEST_F(PermissionQuestionsTest, AClosedQuestionIsNotAskedAgainUntilTheReset) {
    ask(site, "camera");
    answer(std::nullopt);
    EXPECT_EQ(closed_, 1);
    ask(site, "camera");
    EXPECT_THAT(answers_, ElementsAre("camera: no", "camera: no"));
    EXPECT_THAT(shown_, IsEmpty());
    EXPECT_THAT(store_.list(), IsEmpty());
    questions_.reset();
    ask(site, "camera");
    EXPECT_EQ(shown_.size(), 1U);
}

TEST_F(PermissionQuestionsTest, AQuestionThatCantBeShownIsNotClosed) {
    most_ = 0;
    ask(site, "camera");
    EXPECT_THAT(answers_, ElementsAre("camera: no"));
    EXPECT_EQ(closed_, 0);
    most_ = 5;
    ask(site, "camera");
    EXPECT_EQ(shown_.size(), 1U);
}

TEST_F(PermissionQuestionsTest, TheTextsOfPagesAreCut) {
    EXPECT_EQ(otherProgramQuestion("a.b", "mailto"),
              "a.b wants to open a “mailto” link with another program.");
    EXPECT_EQ(otherProgramQuestion("", std::string(500, 'x')), "This page wants to open a “" +
                                                                   std::string(30, 'x') +
                                                                   "…” link with another program.");
}

TEST_F(PermissionQuestionsTest, CapturingAndLocatingLastUntilThePageIsReloaded) {
    for (const char* kind : {"camera", "camera+microphone", "microphone", "screen", "location"}) {
        EXPECT_TRUE(lastsUntilReload(kind)) << kind;
    }
    EXPECT_FALSE(lastsUntilReload("notifications"));
    EXPECT_FALSE(lastsUntilReload(linkPermissionKind("mailto")));
}

TEST_F(PermissionQuestionsTest, APageHoldsOnlyItsOwnPermissions) {
    EXPECT_TRUE(
        isHeldUntilReload({{"https://b.test", "camera", true}, {"https://a.test", "camera", true}},
                          "https://a.test"));
    EXPECT_FALSE(isHeldUntilReload({{"https://b.test", "camera", true},
                                    {"https://a.test", "camera", false},
                                    {"https://a.test", "notifications", true}},
                                   "https://a.test"));
}

TEST_F(PermissionQuestionsTest, EveryKindHasWords) {
    EXPECT_EQ(permissionWords("camera+microphone"), "use the camera and the microphone");
    EXPECT_EQ(permissionWords(linkPermissionKind("mailto")),
              "open “mailto” links with another program");
    EXPECT_EQ(permissionWords(dataPermissionKind("a.b")), "let a.b use its cookies here");
    EXPECT_EQ(permissionWords("new\u202eone"), "newone");
}

} // namespace
} // namespace quorvel
