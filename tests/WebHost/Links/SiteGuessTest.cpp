#include "WebHost/Links/SiteGuess.h"

#include "WebHost/Links/LinkRouting.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(SiteGuessTest, HostsOfOneSiteShareTheirLastLabels) {
    EXPECT_EQ(guessedSite("mail.example.com"), "example.com");
    EXPECT_EQ(guessedSite("a.b.example.com"), "example.com");
    EXPECT_EQ(guessedSite("example.com"), "example.com");
    EXPECT_EQ(guessedSite("x.example.de"), "example.de");
}

TEST(SiteGuessTest, UnderACountryACommonSecondLabelIsNotASite) {
    EXPECT_EQ(guessedSite("mail.example.co.uk"), "example.co.uk");
    EXPECT_EQ(guessedSite("example.com.au"), "example.com.au");
    EXPECT_EQ(guessedSite("co.uk"), "co.uk");
    EXPECT_EQ(guessedSite("a.example.co"), "example.co");
    EXPECT_EQ(guessedSite("a.co.company"), "co.company");
}

TEST(SiteGuessTest, NumbersAndSingleNamesHaveNoSite) {
    for (const char* host :
         {"127.0.0.1", "::1", "fe80::1%en0", "localhost", "", ".", "..", "com."}) {
        const std::string site = guessedSite(host);
        EXPECT_TRUE(site.empty() || site == host) << host << ": " << site;
    }
    EXPECT_EQ(guessedSite("127.0.0.1"), "");
    EXPECT_EQ(guessedSite("localhost"), "");
}

TEST(SiteGuessTest, RoutingComparesWithIt) {
    EXPECT_TRUE(isSameSite("https://a.example.co.uk/", "https://b.example.co.uk/", guessedSite));
    EXPECT_FALSE(isSameSite("https://a.co.uk/", "https://b.co.uk/", guessedSite));
    EXPECT_FALSE(isSameSite("http://127.0.0.1/", "http://10.0.0.1/", guessedSite));
}

} // namespace
} // namespace quorvel
