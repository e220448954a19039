#include "Presentation/SystemWords.h"

#include "LaunchKit/CloneOptions.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::StrEq;

TEST(SystemWordsTest, ATextThatNamesAnotherSystemIsSaidInThisOnesWords) {
    EXPECT_EQ(inSystemWords("CloneSwitch", "Menu bar icon"), "Tray icon");
    EXPECT_THAT(systemWords("CreateOptions", "Show no Dock icon"),
                StrEq("Show no icon in the taskbar (no effect on this system)"));
    EXPECT_EQ(inSystemWords("ProbeTexts", "into your Application Support"),
              "into your own application data");
    EXPECT_EQ(inSystemWords("ProbeTexts", "into your Preferences"), "into your own settings");
    EXPECT_EQ(inSystemWords("Migration", "“%1” now shares Downloads, Documents & Desktop with your "
                                         "Mac — nothing needed moving."),
              "“%1” now shares your Downloads, Documents & Desktop — nothing needed moving.");
}

TEST(SystemWordsTest, AnyOtherTextIsItself) {
    EXPECT_EQ(systemWords("CloneSwitch", "Web browser"), nullptr);
    EXPECT_EQ(systemWords("Other", "Menu bar icon"), nullptr) << "of another context";
    EXPECT_EQ(inSystemWords("Other", "Menu bar icon"), "Menu bar icon");
}

TEST(SystemWordsTest, TheTableOfSwitchesIsLookedUpInItsContext) {
    for (const CloneSwitch& each : cloneSwitches) {
        const bool namesMenuBar = std::string_view(each.key) == "menuBarIcon";
        EXPECT_EQ(systemWords(switchContext, each.fact) != nullptr, namesMenuBar) << each.key;
        EXPECT_EQ(systemWords(switchContext, each.help) != nullptr, namesMenuBar) << each.key;
    }
}

} // namespace
} // namespace quorvel
