#include "Presentation/DeletionWarning.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(DeletionWarningTest, NamesTheCloneAndWhatIsLost) {
    const DeletionWarning warning = deletionWarning("%1 & Co");
    EXPECT_EQ(warning.title, "“%1 & Co” is running");
    EXPECT_EQ(warning.text, "It would lose what it has open, and might write to its data again.");
}

TEST(DeletionWarningTest, IsTranslated) {
    const auto marked = [](const char*, const char* text) { return "!" + std::string(text); };
    EXPECT_EQ(deletionWarning("Work", marked).title, "!“Work” is running");
    EXPECT_EQ(deletionWarning("Work", marked).text.front(), '!');
}

} // namespace
} // namespace quorvel
