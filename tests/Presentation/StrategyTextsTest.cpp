#include "Presentation/StrategyTexts.h"

#include <gtest/gtest.h>

#include <set>

namespace quorvel {
namespace {

TEST(StrategyTextsTest, NamesTheFourAndLeavesOthersAlone) {
    EXPECT_EQ(strategyLabel("home-override"), "Home override (A)");
    EXPECT_EQ(strategyLabel("container-redirect"), "Container redirect (B)");
    EXPECT_EQ(strategyLabel("wrapper-identity"), "Wrapper identity (C)");
    EXPECT_EQ(strategyLabel("unsupported"), "Unsupported");
    EXPECT_EQ(strategyLabel("Home-Override"), "Home-Override");
    EXPECT_EQ(strategyLabel(""), "");
}

TEST(StrategyTextsTest, EachStrategyHasAReasonOfItsOwn) {
    std::set<std::string> reasons;
    for (const Strategy strategy : {Strategy::homeOverride, Strategy::containerRedirect,
                                    Strategy::wrapperIdentity, Strategy::unsupported}) {
        reasons.insert(strategyReason(strategy));
    }
    EXPECT_EQ(reasons.size(), 4U);
}

TEST(StrategyTextsTest, AreTranslatedButNotAnUnknownRawValue) {
    const Translate shouting = [](const char*, const char* text) {
        return "!" + std::string(text);
    };
    EXPECT_EQ(strategyLabel("home-override", shouting), "!Home override (A)");
    EXPECT_EQ(strategyLabel("other", shouting), "other");
    EXPECT_EQ(strategyReason(Strategy::unsupported, shouting), "!it can't be isolated");
}

} // namespace
} // namespace quorvel
