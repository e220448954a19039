#include "LaunchKit/CloneOptions.h"

#include <gtest/gtest.h>

#include <set>

namespace quorvel {
namespace {

CloneOptions optionsWith(const CloneSwitch& set) {
    CloneOptions options;
    options.*set.member = !set.defaultValue();
    return options;
}

TEST(CloneOptionsTest, EachSwitchHasItsOwnMemberKeyFlagAndFact) {
    std::set<std::string_view> keys;
    std::set<std::string_view> flags;
    std::set<std::string_view> facts;
    for (const CloneSwitch& each : cloneSwitches) {
        keys.insert(each.key);
        flags.insert(each.flag);
        facts.insert(each.fact);
        for (const CloneSwitch& other : cloneSwitches) {
            EXPECT_EQ(other.valueIn(optionsWith(each)) != other.defaultValue(), &other == &each)
                << each.key << " " << other.key;
        }
    }
    EXPECT_EQ(keys.size(), cloneSwitches.size());
    EXPECT_EQ(flags.size(), cloneSwitches.size());
    EXPECT_EQ(facts.size(), cloneSwitches.size());
}

std::set<std::string_view> shownKeys(ShortcutKind kind, const CloneOptions& options) {
    std::set<std::string_view> keys;
    for (const CloneSwitch& each : shownSwitches(kind, options)) {
        keys.insert(each.key);
    }
    return keys;
}

TEST(CloneOptionsTest, SwitchesAreShownOnceTheyAreOnOrUsuallyAre) {
    using Keys = std::set<std::string_view>;
    CloneOptions options;
    EXPECT_EQ(shownKeys(ShortcutKind::app, options), Keys{"shareUserFolders"});
    EXPECT_EQ(shownKeys(ShortcutKind::web, options), Keys{}) << "only apps share folders";
    options.shareUserFolders = false;
    options.menuBarIcon = true;
    EXPECT_EQ(shownKeys(ShortcutKind::app, options), (Keys{"menuBarIcon", "shareUserFolders"}));
    EXPECT_EQ(shownKeys(ShortcutKind::command, options), Keys{"menuBarIcon"});
}

} // namespace
} // namespace quorvel
