#include "LinkDoor/LinkAddress.h"

#include "Base/Utf8.h"
#include "tests/LinkDoor/LinkAddresses.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;

TEST(LinkAddressTest, HostileAddressesAreRefusedWithTheReason) {
    const std::vector<HostileAddress> addresses = hostileAddresses();
    EXPECT_GE(addresses.size(), 22U);
    for (const HostileAddress& each : addresses) {
        try {
            (void)checkedLinkScheme(each.text);
            ADD_FAILURE() << each.text.substr(0, 80);
        } catch (const LinkAddressError& error) {
            EXPECT_THAT(error.description(), HasSubstr(each.reason)) << each.text.substr(0, 80);
        }
    }
}

TEST(LinkAddressTest, EveryControlCharacterIsRefused) {
    for (int code = 0; code < 256; ++code) {
        const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
        const std::string character = utf8FromLatin1(std::string(1, static_cast<char>(code)));
        // After a "?", where a backslash is allowed.
        const std::string address = "https://good.test/?" + character;
        if (isControl) {
            EXPECT_THROW((void)checkedLinkScheme(address), LinkAddressError) << code;
        } else {
            EXPECT_EQ(checkedLinkScheme(address), "https") << code;
        }
    }
}

TEST(LinkAddressTest, OtherAddressesAreAcceptedWithTheirScheme) {
    for (const std::string& address : acceptedAddresses()) {
        std::string scheme;
        EXPECT_NO_THROW(scheme = checkedLinkScheme(address)) << address.substr(0, 80);
        EXPECT_TRUE(scheme == "http" || scheme == "https" || scheme == "mailto") << scheme;
        EXPECT_TRUE(hasLinkScheme(address));
    }
    EXPECT_EQ(checkedLinkScheme("HTTP://a"), "http");
    EXPECT_EQ(checkedLinkScheme("https://a"), "https");
    EXPECT_EQ(checkedLinkScheme("MailTo:a@b"), "mailto");
    EXPECT_EQ(checkedLinkScheme("https://me@[::1]:80/"), "https");
    EXPECT_THROW((void)checkedLinkScheme("https://me@[::1"), LinkAddressError);
}

TEST(LinkAddressTest, OnlyWebAndMailSchemesAreRecognized) {
    EXPECT_TRUE(hasLinkScheme("http:"));
    EXPECT_TRUE(hasLinkScheme("HTTPS:\n"));
    for (const char* other : {"", "http", "httpx:", "xhttp:", " http:", "file:", "tel:1",
                              "/http:", "mailto", "httphttp"}) {
        EXPECT_FALSE(hasLinkScheme(other)) << other;
    }
}

} // namespace
} // namespace quorvel
