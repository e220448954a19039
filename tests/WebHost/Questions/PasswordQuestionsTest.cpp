#include "WebHost/Questions/PasswordQuestions.h"

#include "WebHost/Pages/FloodCaps.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;

PasswordAsker asker(const std::string& realm = "Staff") {
    return {.host = "a.b", .port = 443, .realm = realm, .isEncrypted = true, .pageHost = "a.b"};
}

class PasswordQuestionsTest : public ::testing::Test {
protected:
    // Asks, and notes the answer: "user:password", "none", or nothing yet.
    std::size_t decide(const PasswordAsker& who, bool wasWrong = false) {
        return questions_.decide(who, wasWrong, [this](const std::optional<Login>& login) {
            answers_.push_back(login ? login->user + ":" + login->password : "none");
        });
    }
    void answer(const std::optional<Login>& login) {
        const auto answered = std::exchange(shown_, {});
        ASSERT_TRUE(answered) << "no question is shown";
        answered(login);
    }

    std::vector<PasswordText> texts_{};
    std::vector<std::string> answers_{};
    PasswordQuestions::Answered shown_{};
    PasswordQuestions questions_{
        [this](const PasswordText& text, PasswordQuestions::Answered answered) {
            ASSERT_FALSE(shown_) << "one question after the other";
            texts_.push_back(text);
            shown_ = std::move(answered);
        },
        [this] {
            ASSERT_TRUE(shown_) << "no question is shown";
            shown_ = {};
        }};
};

TEST_F(PasswordQuestionsTest, TheHostComesFirstAndTheRealmIsAQuotation) {
    PasswordAsker who = asker("Bank\n\u202e. Your password is needed. " + std::string(1000, 'x'));
    PasswordText text = passwordText(who, false);
    EXPECT_EQ(text.heading, "a.b wants a password");
    EXPECT_THAT(text.text,
                AllOf(StartsWith("The server says: “Bank. Your password"), Not(HasSubstr("\u202e")),
                      Not(HasSubstr("page shown")), Not(HasSubstr("without encryption"))));
    EXPECT_LT(text.text.size(), 300U);
    who.port = 8443;
    EXPECT_EQ(passwordText(who, false).heading, "a.b:8443 wants a password");
    who.pageHost = "c.d";
    EXPECT_THAT(passwordText(who, false).text, HasSubstr("The page shown is from c.d."));
    who.isEncrypted = false;
    EXPECT_THAT(passwordText(who, false).text, HasSubstr("without encryption"));
    EXPECT_THAT(passwordText(who, true).text, StartsWith("The name or the password was wrong."));
    who.isProxy = true;
    EXPECT_THAT(passwordText(who, false).heading, StartsWith("The proxy a.b"));
    EXPECT_THAT(passwordText(asker(""), false).text, Not(HasSubstr("server says")));
}

TEST_F(PasswordQuestionsTest, EqualQuestionsAreOne) {
    decide(asker());
    decide(asker());
    answer(Login{"me", "secret"});
    EXPECT_EQ(answers_, (std::vector<std::string>{"me:secret", "me:secret"}));
    EXPECT_EQ(texts_.size(), 1U);
}

TEST_F(PasswordQuestionsTest, AnAnswerForAnEncryptedConnectionIsForNoOther) {
    PasswordAsker open = asker();
    open.isEncrypted = false;
    decide(asker());
    decide(open);
    answer(Login{"me", "secret"});
    EXPECT_EQ(answers_, (std::vector<std::string>{"me:secret"}));
    ASSERT_EQ(texts_.size(), 2U);
    EXPECT_THAT(texts_.at(1).text, HasSubstr("without encryption"));
}

TEST_F(PasswordQuestionsTest, OneIsShownAfterTheOther) {
    decide(asker("one"));
    decide(asker("two"));
    EXPECT_EQ(texts_.size(), 1U);
    answer(std::nullopt);
    EXPECT_EQ(texts_.size(), 2U);
    answer(Login{"me", "x"});
    EXPECT_EQ(answers_, (std::vector<std::string>{"none", "me:x"}));
}

TEST_F(PasswordQuestionsTest, AnAnswerThatLeadsToTheSameQuestionAtOnceShowsItOnce) {
    questions_.decide(asker(), false,
                      [this](const std::optional<Login>&) { decide(asker(), true); });
    answer(Login{"me", "wrong"});
    EXPECT_EQ(texts_.size(), 2U);
    answer(Login{"me", "right"});
    EXPECT_EQ(answers_, std::vector<std::string>{"me:right"});
}

TEST_F(PasswordQuestionsTest, AQuestionEndsWithTheLastRequestThatWaitsForItsAnswer) {
    const std::size_t first = decide(asker("one"));
    const std::size_t second = decide(asker("one"));
    const std::size_t hidden = decide(asker("two"));
    decide(asker("three"));
    questions_.withdraw(first);
    EXPECT_TRUE(shown_) << "one still waits";
    questions_.withdraw(first);
    questions_.withdraw(hidden);
    EXPECT_EQ(texts_.size(), 1U);
    questions_.withdraw(second);
    ASSERT_EQ(texts_.size(), 2U) << "the next one is shown";
    EXPECT_THAT(texts_.at(1).text, HasSubstr("three"));
    answer(Login{"me", "x"});
    EXPECT_EQ(answers_, (std::vector<std::string>{"me:x"}));
    questions_.withdraw(hidden);
    decide(asker("one"));
    EXPECT_TRUE(shown_) << "it was not refused";
    questions_.withdraw(decide(asker("one"), true));
    EXPECT_TRUE(shown_);
}

TEST_F(PasswordQuestionsTest, AQuestionThatIsWithdrawnAgainAndAgainIsAskedThreeTimes) {
    for (int attempt = 0; attempt < 10; ++attempt) {
        questions_.withdraw(decide(asker()));
    }
    EXPECT_EQ(texts_.size(), 3U);
}

TEST_F(PasswordQuestionsTest, ARefusalHoldsUntilTheReset) {
    decide(asker());
    answer(std::nullopt);
    decide(asker());
    EXPECT_EQ(answers_, (std::vector<std::string>{"none", "none"}));
    questions_.reset();
    decide(asker());
    EXPECT_TRUE(shown_);
}

TEST_F(PasswordQuestionsTest, AfterThreeRefusalsNoNewRealmAsksUntilTheReset) {
    for (const char* realm : {"1", "2", "3"}) {
        decide(asker(realm));
        answer(std::nullopt);
    }
    decide(asker("4"));
    EXPECT_FALSE(shown_);
    EXPECT_EQ(answers_, std::vector<std::string>(4, "none"));
    questions_.reset();
    decide(asker("4"));
    EXPECT_TRUE(shown_);
}

TEST_F(PasswordQuestionsTest, ThreeWrongAnswersAreEnough) {
    for (int attempt = 0; attempt < 3; ++attempt) {
        decide(asker(), attempt > 0);
        answer(Login{"me", "wrong"});
    }
    decide(asker(), true);
    EXPECT_EQ(answers_.back(), "none");
    EXPECT_EQ(texts_.size(), 3U);
    EXPECT_THAT(texts_.at(1).text, HasSubstr("was wrong"));
}

TEST_F(PasswordQuestionsTest, AnAcceptedAnswerMakesRoomForThreeMore) {
    for (int visit = 0; visit < 5; ++visit) {
        decide(asker());
        answer(Login{"me", "right"});
        questions_.accepted(asker());
    }
    EXPECT_EQ(texts_.size(), 5U);
}

TEST_F(PasswordQuestionsTest, AThousandQuestionsDontPileUp) {
    for (int count = 0; count < 1000; ++count) {
        decide(asker(std::to_string(count)));
    }
    EXPECT_EQ(answers_.size(), 1000U - mostWaitingQuestions);
    for (std::size_t count = 0; count < mostWaitingQuestions; ++count) {
        answer(std::nullopt);
    }
    EXPECT_FALSE(shown_);
    EXPECT_EQ(answers_.size(), 1000U);
}

} // namespace
} // namespace quorvel
