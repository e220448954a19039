#include "Presentation/AppTexts.h"
#include "QuorvelApp/model/NewCloneForm.h"

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

TEST(SuggestedEnvironmentTest, SuggestedVariablesReplaceNoneOfTheUsers) {
    NewCloneForm form;
    form.suggestEnvironment({{"B", "2"}, {"A", "1"}});
    EXPECT_EQ(form.envText, "A=1\nB=2");
    EXPECT_EQ(form.makeRequest().environment,
              (std::map<std::string, std::string>{{"A", "1"}, {"B", "2"}}));
    form.envText = "MINE=1";
    form.suggestEnvironment({{"A", "1"}});
    EXPECT_EQ(form.envText, "MINE=1");
}

TEST(SuggestedEnvironmentTest, WithdrawsTheBusOnlyIfItWasSuggestedAndIsUnchanged) {
    const std::map<std::string, std::string> noBus{{"DBUS_SESSION_BUS_ADDRESS", "disabled:"}};
    const std::string line = "DBUS_SESSION_BUS_ADDRESS=disabled:";
    const auto textAfter = [&](const auto& suggested, const std::string& edited) {
        NewCloneForm form;
        form.suggestEnvironment(suggested);
        form.envText = edited;
        form.withdrawSuggestedBus();
        return form.envText;
    };
    EXPECT_EQ(textAfter(noBus, line), "");
    EXPECT_EQ(textAfter(noBus, "A=1\n" + line + "\n# mine\nB=2"), "A=1\n# mine\nB=2");
    EXPECT_EQ(textAfter(noBus, "DBUS_SESSION_BUS_ADDRESS=unix:path=/run/bus"),
              "DBUS_SESSION_BUS_ADDRESS=unix:path=/run/bus");
    EXPECT_EQ(textAfter(std::map<std::string, std::string>{}, line), line) << "typed by the user";
    NewCloneForm form;
    form.suggestEnvironment(noBus);
    form.withdrawSuggestedBus();
    form.envText = line;
    form.withdrawSuggestedBus();
    EXPECT_EQ(form.envText, line) << "typed after it was withdrawn";
}

TEST(SuggestedEnvironmentTest, SaysWhatTheEnteredVariablesCost) {
    NewCloneForm form;
    EXPECT_EQ(form.environmentCostText(), "");
    form.envText = "A=1\nDBUS_SESSION_BUS_ADDRESS=disabled:";
    EXPECT_EQ(form.environmentCostText(),
              environmentCost({{"DBUS_SESSION_BUS_ADDRESS", "disabled:"}}, inEnglish));
    EXPECT_NE(form.environmentCostText(), "");
}

} // namespace
} // namespace quorvel::testing
