#include "Presentation/ChangeTexts.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

ChangedClone changedClone() {
    ChangedClone changed{.isChanged = true};
    changed.record.config.displayName = "Work";
    return changed;
}

TEST(ChangeTextsTest, AChangeWithNothingToKnowHasNoNotes) {
    EXPECT_THAT(changeNotes(changedClone(), false, inEnglish), IsEmpty());
    ChangedClone unchanged = changedClone();
    unchanged.isChanged = false;
    EXPECT_THAT(changeNotes(unchanged, true, inEnglish), IsEmpty());
}

TEST(ChangeTextsTest, WhatTheUserShouldKnowIsSaidInOrder) {
    ChangedClone changed = changedClone();
    changed.kept = {"the icon", "“K” in Info.plist"};
    changed.warnings = {"Something went wrong."};
    EXPECT_THAT(
        changeNotes(changed, true, inEnglish),
        ElementsAre(
            "“Work” is running. The change takes effect at its next start.",
            "Changed in “Work” by other means, so kept as it is: the icon, “K” in Info.plist",
            "Something went wrong."));
}

TEST(ChangeTextsTest, EveryReasonHasAWord) {
    EXPECT_EQ(reasonText(StaleReason::runner, inEnglish), "runner");
    EXPECT_EQ(reasonText(StaleReason::arguments, inEnglish), "arguments");
    EXPECT_EQ(reasonText(StaleReason::icon, inEnglish), "icon");
}

} // namespace
} // namespace quorvel
