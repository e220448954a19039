#include "WebHost/Links/LinkRouting.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

// The last two parts of a host are its site.
std::string lastTwo(const std::string& host) {
    const std::size_t dot = host.rfind('.');
    const std::size_t before = dot == std::string::npos ? dot : host.rfind('.', dot - 1);
    return before == std::string::npos ? host : host.substr(before + 1);
}

constexpr std::string_view home = "https://mail.example.com/inbox";
constexpr std::string_view signIn = "https://login.identity.net/form";
constexpr std::string_view elsewhere = "https://news.org/";

LinkRequest click(std::string_view address, std::string_view page = home) {
    return {.address = address, .page = page, .home = home, .isGesture = true, .isLinkClick = true};
}

LinkDecision decide(const LinkRequest& request) {
    return routeOf(request, lastTwo);
}

TEST(LinkRoutingTest, ASiteIsAllItsHosts) {
    EXPECT_TRUE(isSameSite("https://a.example.com/", "http://b.example.com:81/", lastTwo));
    EXPECT_FALSE(isSameSite("https://example.com/", "https://example.org/", lastTwo));
    EXPECT_FALSE(isSameSite("https://example.com.evil.org/", home, lastTwo));
    EXPECT_FALSE(isSameSite("https://example.com@evil.org/", home, lastTwo));
    EXPECT_FALSE(isSameSite("mailto:a@example.com", home, lastTwo));
    EXPECT_FALSE(isSameSite("https:", "http:", lastTwo)) << "no hosts";
    const SiteOf unknown = [](const std::string&) { return std::string(); };
    EXPECT_TRUE(isSameSite("http://127.0.0.1:1/", "http://127.0.0.1:2/", unknown));
    EXPECT_FALSE(isSameSite("http://127.0.0.1/", "http://localhost/", unknown));
}

TEST(LinkRoutingTest, AClickWithinTheSiteStays) {
    EXPECT_EQ(decide(click("https://docs.example.com/x")), LinkDecision::here);
    EXPECT_EQ(decide(click("http://example.com")), LinkDecision::here);
}

TEST(LinkRoutingTest, AClickThatLeavesTheSiteGoesOutside) {
    EXPECT_EQ(decide(click(elsewhere)), LinkDecision::outside);
    LinkRequest blank = click(elsewhere);
    blank.isNewWindow = true;
    EXPECT_EQ(decide(blank), LinkDecision::outside);
    blank.isMainFrame = false;
    EXPECT_EQ(decide(blank), LinkDecision::outside) << "from a frame, too";
}

TEST(LinkRoutingTest, ARuleOfTheUserCounts) {
    LinkRequest inside = click(elsewhere);
    inside.rule = LinkPlace::inside;
    EXPECT_EQ(decide(inside), LinkDecision::here);
    LinkRequest outside = click("https://docs.example.com/x");
    outside.rule = LinkPlace::outside;
    EXPECT_EQ(decide(outside), LinkDecision::outside);
    outside.staysInside = true;
    EXPECT_EQ(decide(outside), LinkDecision::outside) << "it is more exact than the clone's option";
    outside.isRedirect = true;
    EXPECT_EQ(decide(outside), LinkDecision::here) << "it is for clicks alone";
    outside.isRedirect = false;
    outside.isPopup = true;
    EXPECT_EQ(decide(outside), LinkDecision::here) << "where signing in may be going on";
    LinkRequest other = click("file:///etc/passwd");
    other.rule = LinkPlace::inside;
    EXPECT_EQ(decide(other), LinkDecision::refuse);
}

TEST(LinkRoutingTest, SigningInOnAnotherSiteStays) {
    LinkRequest redirect = click(signIn);
    redirect.isRedirect = true;
    EXPECT_EQ(decide(redirect), LinkDecision::here) << "the click itself was on this site";
    LinkRequest form = click(signIn);
    form.isLinkClick = false;
    EXPECT_EQ(decide(form), LinkDecision::here);
    EXPECT_EQ(decide(click("https://help.identity.net/", signIn)), LinkDecision::here);
    EXPECT_EQ(decide(click(home, signIn)), LinkDecision::here) << "the way back";
    EXPECT_EQ(decide(click(elsewhere, signIn)), LinkDecision::outside);
    LinkRequest byScript = click(elsewhere);
    byScript.isGesture = false;
    EXPECT_EQ(decide(byScript), LinkDecision::here) << "no site can open browser windows by itself";
}

TEST(LinkRoutingTest, APopupMayGoAnywhereButItsOwnNewWindowsMayNot) {
    LinkRequest request = click(elsewhere, signIn);
    request.isPopup = true;
    EXPECT_EQ(decide(request), LinkDecision::here);
    request.isNewWindow = true;
    EXPECT_EQ(decide(request), LinkDecision::outside);
}

TEST(LinkRoutingTest, LinksStayInsideWhereTheCloneSaysSo) {
    LinkRequest request = click(elsewhere);
    request.staysInside = true;
    EXPECT_EQ(decide(request), LinkDecision::here);
    request.isNewWindow = true;
    EXPECT_EQ(decide(request), LinkDecision::here);
    request.address = "mailto:a@b.c";
    EXPECT_EQ(decide(request), LinkDecision::ask) << "which the clone can't show";
}

TEST(LinkRoutingTest, InACloneWithoutAnAddressAllLinksStay) {
    LinkRequest request = click(elsewhere, "https://example.com/");
    request.home = "";
    EXPECT_EQ(decide(request), LinkDecision::here);
}

TEST(LinkRoutingTest, OtherSchemesNeedAGestureInTheMainFrame) {
    for (const char* address : {"mailto:a@b.c", "TEL:123", "zoommtg://x", "web+x:y"}) {
        EXPECT_EQ(decide(click(address)), LinkDecision::ask) << address;
        LinkRequest byItself = click(address);
        byItself.isGesture = false;
        EXPECT_EQ(decide(byItself), LinkDecision::refuse) << address;
        LinkRequest inFrame = click(address);
        inFrame.isMainFrame = false;
        EXPECT_EQ(decide(inFrame), LinkDecision::refuse) << address;
    }
}

TEST(LinkRoutingTest, DangerousSchemesAreNeverHandedOn) {
    for (const char* address : {"file:///etc/passwd",
                                "FILE:///x",
                                "javascript:alert(1)",
                                "JavaScript:x",
                                "data:text/html,x",
                                "webkit://gpu",
                                "resource:///x",
                                "view-source:https://a.b",
                                "quorvel:x",
                                "ftp://a.b/",
                                "filesystem:https://a.b/x",
                                "jar:file:///x!/",
                                "smb://host/x",
                                "vbscript:x",
                                "",
                                "/x",
                                "no scheme",
                                " mailto:a@b",
                                "-x:y",
                                "1x:y",
                                "a b:c"}) {
        EXPECT_EQ(decide(click(address)), LinkDecision::refuse) << address;
    }
}

TEST(LinkRoutingTest, FramesShowWhatTheEngineShows) {
    LinkRequest request;
    request.home = home;
    request.isMainFrame = false;
    for (const char* address : {"https://ads.net/", "about:blank", "blob:https://x/1", "data:,x"}) {
        request.address = address;
        EXPECT_EQ(decide(request), LinkDecision::here) << address;
    }
    request.address = "file:///etc/passwd";
    EXPECT_EQ(decide(request), LinkDecision::refuse);
    EXPECT_EQ(decide(click("about:blank")), LinkDecision::here);
    EXPECT_EQ(decide(click("blob:https://mail.example.com/1")), LinkDecision::here);
}

} // namespace
} // namespace quorvel
