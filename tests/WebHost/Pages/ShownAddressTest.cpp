#include "WebHost/Pages/ShownAddress.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(ShownAddressTest, APageThatIsOnItsWayIsNotShown) {
    ShownAddress shown;
    shown.reported("https://bank.example/");
    EXPECT_EQ(shown.text(), "") << "before the first page";
    shown.committed("https://page.example/a");
    shown.reported("https://bank.example/never-answers");
    EXPECT_EQ(shown.text(), "https://page.example/a");
    shown.reported("https://page.example:444/");
    shown.reported("http://page.example/");
    shown.reported("about:blank");
    shown.reported("");
    EXPECT_EQ(shown.text(), "https://page.example/a");
    shown.committed("https://bank.example/");
    EXPECT_EQ(shown.text(), "https://bank.example/");
}

TEST(ShownAddressTest, APageMayChangeTheAddressWithinItsOrigin) {
    ShownAddress shown;
    shown.committed("https://page.example/a");
    shown.reported("https://page.example/b#c");
    EXPECT_EQ(shown.text(), "https://page.example/b#c");
    shown.committed("about:blank");
    shown.reported("blob:https://page.example/1");
    EXPECT_EQ(shown.text(), "about:blank") << "neither has an origin";
}

} // namespace
} // namespace quorvel
