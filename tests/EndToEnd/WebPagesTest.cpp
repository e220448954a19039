// What pages of web clones may do, with the real engine.
#include "tests/EndToEnd/WebCloneFixture.h"

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class WebPagesTest : public WebCloneFixture {
protected:
    // Opens a clone with such a page; returns its window.
    std::string openPage(const std::string& page, const std::string& title,
                         const std::vector<std::string>& more = {}) {
        create("Portal", page, more);
        EXPECT_EQ(open("Portal"), 0) << session->log();
        return window(title + ".* — Portal");
    }
};

TEST_F(WebPagesTest, APageCantSpeakForOneThatIsOnItsWay) {
    const std::string shown = openPage("opens-slow", "Opens");
    clickUntil(shown, "/never-answers");
    window("^127\\.0\\.0\\.1 — .*Still here.* — Portal");
    window("^127\\.0\\.0\\.1 says");
}

TEST_F(WebPagesTest, ARedirectAfterAClickStays) {
    addBrowser();
    clickUntil(openPage("redirecting", "Redirecting"), "/elsewhere");
    EXPECT_FALSE(fs::exists(browsed())) << read(browsed());
}

TEST_F(WebPagesTest, LinksStayInsideWhereTheCloneSaysSo) {
    addBrowser();
    clickUntil(openPage("link", "Link", {"--links", "inside"}), "/elsewhere");
    EXPECT_FALSE(fs::exists(browsed())) << read(browsed());
}

TEST_F(WebPagesTest, AnAddressHandedOverIsNotLostWhenAnotherPageArrives) {
    const std::string shown = openPage("hangs", "Hangs", {"--open-with"});
    clickUntil(shown, "/hanging");
    request("/answers-late");
    ASSERT_EQ(handOver("Portal", ""), 0);
    session->write(session->home / "answer", "");
    window("Late.* — Portal");
#ifdef QUORVEL_ACCESSIBLE
    EXPECT_TRUE(isShown("\tlocalhost\n")) << "it does not go by the other page's name";
#endif
    session->write(session->home / "hang-no-more", "");
    request("/seen");
    window("Inbox.* — Portal");
}

TEST_F(WebPagesTest, AWindowWithoutAnOpenerHasNoBadge) {
    recordBus("interface='com.canonical.Unity.LauncherEntry'");
    clickUntil(openPage("noopener", "Noopener", {"--open-with"}), "/alone");
    EXPECT_EQ(request("/alone"), "/alone?opener=null");
    ASSERT_EQ(handOver("Portal", "badge"), 0);
    EXPECT_TRUE(isOnBus("int64 7 ")) << "the clone's own window has one";
    EXPECT_EQ(busText().find("int64 66 "), std::string::npos);
}

TEST_F(WebPagesTest, APageThatWasNotLeftAsksAgain) {
    const std::string shown = openPage("draft", "Draft");
    clickUntil(shown, "/typed");
    const pid_t host = process("Portal");
    for (const char* time : {"1", "2"}) {
        pressIn(shown, "ctrl+w");
        request(std::string("/leaving\\?") + time);
        pressIn(window("^Leave this page"), "Escape");
        EXPECT_TRUE(isGone("^Leave this page"));
    }
    EXPECT_EQ(process("Portal"), host);
}

TEST_F(WebPagesTest, APageThatHangsIsClosedByTheKeyboard) {
    const std::string shown = openPage("loops", "Loops");
    clickUntil(shown, "/looping");
    const pid_t host = process("Portal");
    pressIn(shown, "ctrl+w");
    pressIn(shown, "ctrl+w");
    EXPECT_TRUE(waitUntil([&] { return process("Portal") != host; }, longestWait));
}

#ifdef QUORVEL_ACCESSIBLE
TEST_F(WebPagesTest, APageThatHangsIsClosedAtTheSecondAttempt) {
    clickUntil(openPage("hangs", "Hangs"), "/hanging");
    const pid_t host = process("Portal");
    activate("Close");
    EXPECT_TRUE(isShown("This page does not react. Close it again to leave it."));
    EXPECT_EQ(process("Portal"), host);
    activate("Close");
    EXPECT_TRUE(waitUntil([&] { return process("Portal") != host; }, longestWait));
}
#endif

TEST_F(WebPagesTest, ATitleThatFlashesDoesNotFloodTheDock) {
    recordBus("interface='com.canonical.Unity.LauncherEntry'");
    const auto begin = std::chrono::steady_clock::now();
    openPage("flashing", "Done");
    const auto seconds =
        std::chrono::ceil<std::chrono::seconds>(std::chrono::steady_clock::now() - begin);
    EXPECT_TRUE(isOnBus("int64 1 "));
    end("Portal");
    EXPECT_LE(countOnBus("member=Update"), 4 * seconds.count() + 4);
    EXPECT_LE(countOnBus("\"urgent\" variant boolean true"), seconds.count() / 10 + 1);
}

TEST_F(WebPagesTest, PagesWithoutASandboxAreReportedInTheLog) {
    openPage("", "Inbox", {"--env", "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS=1"});
    EXPECT_TRUE(waitUntil(
        [&] {
            return log("Portal").find("pages run without their sandbox\n") != std::string::npos;
        },
        longestWait));
}

} // namespace
} // namespace quorvel
