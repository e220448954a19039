#include "Presentation/DeletionWarning.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(DeletionWarningTest, NamesTheCloneAndWhatIsLost) {
    const DeletionWarning warning = deletionWarning("%1 & Co", true, inEnglish);
    EXPECT_EQ(warning.title, "“%1 & Co” is running");
    EXPECT_EQ(warning.text, "It would lose what it has open, and might write to its data again.");
}

TEST(DeletionWarningTest, SaysWhatTheDesktopShowsWhereTheDataStays) {
    const DeletionWarning note = deletionWarning("Work", false, inEnglish);
    EXPECT_EQ(note.title, "“Work” is running");
    EXPECT_EQ(note.text,
              "It goes on until you quit it, perhaps under the original’s icon in the Dock.");
}

TEST(DeletionWarningTest, IsTranslated) {
    const auto marked = [](const char*, const char* text) { return "!" + std::string(text); };
    EXPECT_EQ(deletionWarning("Work", true, marked).title, "!“Work” is running");
    EXPECT_EQ(deletionWarning("Work", true, marked).text.front(), '!');
    EXPECT_EQ(deletionWarning("Work", false, marked).text.front(), '!');
}

} // namespace
} // namespace quorvel
