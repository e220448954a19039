#include "WebHost/Pages/PageTitle.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(PageTitleTest, UnsafeCharactersAreRemoved) {
    EXPECT_EQ(pageTitle("Inbox"), "Inbox");
    EXPECT_EQ(pageTitle("  In\x07 \x1b"
                        "box\u009b\u202e\u2066\u2069\u200b\ufeff\xff  "),
              "In box");
    EXPECT_EQ(pageTitle(""), "");
    EXPECT_EQ(pageTitle("\u202e"), "");
}

TEST(PageTitleTest, IsCutTo120Characters) {
    EXPECT_EQ(pageTitle(std::string(120, 'x')), std::string(120, 'x'));
    EXPECT_EQ(pageTitle(std::string(1000, 'x')), std::string(120, 'x') + "…");
}

TEST(PageTitleTest, TheClonesNameAlwaysFollows) {
    EXPECT_EQ(windowTitle("Inbox", "Work", {}), "\u2068Inbox\u2069 — Work");
    EXPECT_EQ(windowTitle("", "Work", {}), "Work");
    EXPECT_EQ(windowTitle(std::string(5000, 'x'), "Work", {}),
              "\u2068" + std::string(120, 'x') + "…\u2069 — Work");
    EXPECT_EQ(windowTitle("a", "Wo\u202erk", {}), "\u2068a\u2069 — Work");
}

TEST(PageTitleTest, TheBadgeLeadsUnlessThePageShowsItItself) {
    EXPECT_EQ(windowTitle("Inbox", "Work", "7"), "(7) \u2068Inbox\u2069 — Work");
    EXPECT_EQ(windowTitle("", "Work", "7"), "(7) Work");
    EXPECT_EQ(windowTitle("(7) Inbox", "Work", "7"), "\u2068(7) Inbox\u2069 — Work");
    EXPECT_EQ(windowTitle("[7] Inbox", "Work", "7"), "\u2068[7] Inbox\u2069 — Work");
    EXPECT_EQ(windowTitle("(99+) Chat", "Work", "99"), "\u2068(99+) Chat\u2069 — Work");
    EXPECT_EQ(windowTitle("(70) Inbox", "Work", "7"), "(7) \u2068(70) Inbox\u2069 — Work");
}

TEST(PageTitleTest, APopupShowsItsHostFirst) {
    EXPECT_EQ(popupTitle("https://user@login.evil.org:81/x", "Your bank", "Work"),
              "login.evil.org — \u2068Your bank\u2069 — Work");
    EXPECT_EQ(popupTitle("about:blank", "", "Work"), "about:blank — Work");
}

TEST(PageTitleTest, AHostThatIsNotVerifiedIsMarked) {
    EXPECT_EQ(shownHost("https://a.b/x", false), "a.b");
    EXPECT_EQ(shownHost("https://a.b/x", true), "a.b — not verified");
    EXPECT_EQ(shownHost("http://a.b/x", false), "a.b — not encrypted");
    EXPECT_EQ(shownHost("http://a.b/x", true), "a.b — not encrypted");
    EXPECT_EQ(shownHost("http://127.0.0.1:80/x", false), "127.0.0.1");
    EXPECT_EQ(shownHost("http://localhost/x", false), "localhost");
    EXPECT_EQ(shownHost("about:blank", false), "");
    EXPECT_EQ(shownHost("https://a\u202eb/x", false), "ab");
}

} // namespace
} // namespace quorvel
