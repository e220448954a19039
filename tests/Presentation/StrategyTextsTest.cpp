#include "Presentation/StrategyTexts.h"

#include <gtest/gtest.h>

#include <set>

namespace quorvel {
namespace {

TEST(StrategyTextsTest, NamesTheFourAndLeavesOthersAlone) {
    EXPECT_EQ(strategyLabel("home-override", inEnglish), "Home override (A)");
    EXPECT_EQ(strategyLabel("container-redirect", inEnglish), "Container redirect (B)");
    EXPECT_EQ(strategyLabel("wrapper-identity", inEnglish), "Wrapper identity (C)");
    EXPECT_EQ(strategyLabel("unsupported", inEnglish), "Unsupported");
    EXPECT_EQ(strategyLabel("Home-Override", inEnglish), "Home-Override");
    EXPECT_EQ(strategyLabel("", inEnglish), "");
}

TEST(StrategyTextsTest, EachStrategyHasAReasonOfItsOwn) {
    std::set<std::string> reasons;
    for (const Strategy strategy : {Strategy::homeOverride, Strategy::containerRedirect,
                                    Strategy::wrapperIdentity, Strategy::unsupported}) {
        reasons.insert(strategyReason(strategy, inEnglish));
    }
    EXPECT_EQ(reasons.size(), 4U);
}

TEST(StrategyTextsTest, AreTranslatedButNotAnUnknownRawValue) {
    const Translate shouting = [](const char*, const char* text) {
        return "!" + std::string(text);
    };
    EXPECT_EQ(strategyLabel("home-override", shouting), "!Home override (A)");
    EXPECT_EQ(strategyLabel("other", shouting), "other");
    EXPECT_EQ(strategyReason(Strategy::unsupported, shouting), "!it can’t be isolated");
}

} // namespace
} // namespace quorvel
