#include "WebHost/Links/WebAddress.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using Case = StartAddress::Case;

std::string opened(const std::string& url) {
    const StartAddress start = startAddress(url);
    return start.kind == Case::page ? start.text : "not a page";
}

TEST(WebAddressTest, AnAddressWithoutASchemeGetsHttps) {
    EXPECT_EQ(opened("example.com"), "https://example.com");
    EXPECT_EQ(opened(" \texample.com/a?b#c\n"), "https://example.com/a?b#c");
    EXPECT_EQ(opened("localhost:8080/x"), "https://localhost:8080/x");
    EXPECT_EQ(opened("//example.com/"), "https://example.com/");
    EXPECT_EQ(opened("user@example.com"), "https://user@example.com");
}

TEST(WebAddressTest, WebAddressesStayAsTheyAre) {
    for (const char* url : {"https://example.com/", "http://127.0.0.1:81/a b", "HTTP://[::1]/"}) {
        EXPECT_EQ(opened(url), url);
    }
}

TEST(WebAddressTest, AnAbsentOrBlankAddressIsNotAnAddress) {
    EXPECT_EQ(startAddress(std::nullopt).kind, Case::none);
    EXPECT_EQ(startAddress("").kind, Case::none);
    EXPECT_EQ(startAddress(" \t\r\n").kind, Case::none);
}

TEST(WebAddressTest, OtherSchemesAreRefused) {
    for (const char* url :
         {"file:///etc/passwd", "javascript:alert(1)", "JAVASCRIPT:x", "data:text/html,x",
          "ftp://a.b/", "mailto:a@b.c", "about:blank", "chrome://settings", "blob:https://a.b/1"}) {
        EXPECT_EQ(startAddress(url), (StartAddress{Case::refused, "it is not a web address"}))
            << url;
    }
}

TEST(WebAddressTest, AddressesThatCantBeTrustedAreRefused) {
    EXPECT_EQ(startAddress("https:///x").text, "the address has no host");
    EXPECT_EQ(startAddress("https:example.com").text, "the address has no host");
    EXPECT_EQ(startAddress("https://a\\b/").text, "the address contains a backslash");
    EXPECT_EQ(startAddress("exa\u202emple.com").text, "the address contains control characters");
    EXPECT_EQ(startAddress("https://a.b/" + std::string(40'000, 'x')).kind, Case::refused);
}

TEST(WebAddressTest, TheHostIsTheRealOne) {
    EXPECT_EQ(hostOf("https://Example.COM/x"), "example.com");
    EXPECT_EQ(hostOf("https://good.com@evil.org:81/"), "evil.org");
    EXPECT_EQ(hostOf("https://a:b@c@evil.org/@good.com"), "evil.org");
    EXPECT_EQ(hostOf("https://evil.org\\@good.com/"), "evil.org");
    EXPECT_EQ(hostOf("http://[::1]:81/"), "::1");
    EXPECT_EQ(hostOf("https://evil.org?@good.com"), "evil.org");
    EXPECT_EQ(hostOf("mailto:a@b.c"), "");
    EXPECT_EQ(hostOf("about:blank"), "");
    EXPECT_EQ(hostOf("http://[::1"), "[::1");
}

TEST(WebAddressTest, TheOriginHasSchemeHostAndPort) {
    EXPECT_EQ(originOf("https://Example.com:443/x"), "https://example.com");
    EXPECT_EQ(originOf("http://example.com:80"), "http://example.com");
    EXPECT_EQ(originOf("http://u@example.com:443/"), "http://example.com:443");
    EXPECT_EQ(originOf("http://[::1]:81/"), "http://[::1]:81");
    EXPECT_EQ(originOf("file:///x"), "");
    EXPECT_EQ(originOf("https:///x"), "");
}

TEST(WebAddressTest, ASchemeIsLettersFirst) {
    EXPECT_EQ(schemeOf("Web+X-1.2:y"), "web+x-1.2");
    EXPECT_EQ(schemeOf("1a:b"), "");
    EXPECT_EQ(schemeOf("a/b:c"), "");
    EXPECT_EQ(schemeOf(":x"), "");
    EXPECT_EQ(schemeOf("https"), "");
    EXPECT_TRUE(isWebAddress("HTTPS://x"));
    EXPECT_FALSE(isWebAddress("httpsx://x"));
}

TEST(WebAddressTest, OnlyNumbersAndLocalhostAreThisComputer) {
    EXPECT_TRUE(isThisComputer("localhost"));
    EXPECT_TRUE(isThisComputer("127.0.0.1"));
    for (const char* host :
         {"127.evil.org", "127.0.0.1.evil.org", "localhost.evil.org", "10.0.0.1", ""}) {
        EXPECT_FALSE(isThisComputer(host)) << host;
    }
}

} // namespace
} // namespace quorvel
