#include "Presentation/MigrationSummary.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Migration = InstanceLauncher::Migration;

// German word order, to see that texts are templates and not glued together.
std::string inGerman(const char*, const char* text) {
    const std::string english(text);
    return english == "%1 from %2"                           ? "aus %2 %1"
           : english == "Moved %1 into your shared folders." ? "%1 verschoben."
           : english == "“%1” now saves there."              ? "Dort sichert jetzt „%1“."
                                                             : english;
}

TEST(MigrationSummaryTest, NamesTheFoldersThatSomethingWasMovedFromInTheirOwnOrder) {
    const Migration migration{.moved = {{"Desktop", 1}, {"Documents", 0}, {"Downloads", 3}}};
    EXPECT_THAT(movedParts(migration, inEnglish),
                ElementsAre("3 from Downloads", "1 from Desktop"));
    EXPECT_THAT(movedParts({}, inEnglish), IsEmpty());
}

TEST(MigrationSummaryTest, ASuccessSaysWhatWasMovedOrThatNothingWas) {
    EXPECT_EQ(sharingMessage("Work", {.moved = {{"Downloads", 2}, {"Desktop", 1}}}, inEnglish),
              "Moved 2 from Downloads, 1 from Desktop into your shared folders. “Work” now saves "
              "there.");
    EXPECT_EQ(sharingMessage("%1", {.moved = {{"Downloads", 0}}}, inEnglish),
              "“%1” now shares Downloads, Documents & Desktop with your Mac — nothing needed "
              "moving.");
}

TEST(MigrationSummaryTest, AFailureBeginsWithWhatWasMovedAllTheSame) {
    EXPECT_EQ(failureMessage({.moved = {{"Documents", 1}}}, "Broken.", inEnglish),
              "Moved 1 from Documents into your shared folders. Broken.");
    EXPECT_EQ(failureMessage({}, "Broken.", inEnglish), "Broken.");
}

TEST(MigrationSummaryTest, AtMostFiveItemsThatHadToStayAreNamed) {
    Migration migration;
    EXPECT_EQ(unmovedItems(migration, inEnglish), "");
    for (const char* name : {"1", "2", "3", "4", "5"}) {
        migration.unmoved.push_back({.path = name, .reason = name});
    }
    const std::string five =
        "Not everything could be moved, so the clone still has folders of its own:\n1\n2\n3\n4\n5";
    EXPECT_EQ(unmovedItems(migration, inEnglish), five);
    migration.unmoved.push_back({.path = "6", .reason = "6"});
    EXPECT_EQ(unmovedItems(migration, inEnglish), five + "\n… and 1 more");
}

TEST(MigrationSummaryTest, IsTranslatedWithItsArgumentsInAnotherOrder) {
    EXPECT_EQ(sharingMessage("Work", {.moved = {{"Desktop", 1}}}, inGerman),
              "aus Desktop 1 verschoben. Dort sichert jetzt „Work“.");
}

} // namespace
} // namespace quorvel
