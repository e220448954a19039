#include "WebHost/Pages/StatusPages.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(StatusPagesTest, TextsAreShownAsTheyAre) {
    EXPECT_EQ(htmlText("<b a='\"'>&\u202ex"), "&lt;b a=&#39;&quot;&#39;&gt;&amp;x");
    const std::string page = offlinePage("https://a.b/\"><script>x", "<i>reason</i>");
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("<i>")));
    EXPECT_THAT(noAddressPage("<h1>Work"), HasSubstr("“&lt;h1&gt;Work” has no address"));
}

TEST(StatusPagesTest, ThePageCanBeTriedAgain) {
    const std::string address = "https://a.b/?" + std::string(10'000, 'x');
    for (const std::string& page :
         {offlinePage(address, "No answer."),
          certificatePage(address, "It is too old.", "Of: <b>\nBy: you"), crashPage(address)}) {
        EXPECT_THAT(page, HasSubstr("href=\"" + address + "\""));
        EXPECT_THAT(page, HasSubstr("a.b"));
        EXPECT_THAT(page, HasSubstr("default-src 'none'"));
    }
    EXPECT_THAT(crashPage("javascript:alert(1)"), Not(HasSubstr("href")));
    EXPECT_THAT(offlinePage(address, "No answer."), HasSubstr("No answer."));
    EXPECT_THAT(certificatePage(address, "It is too old.", "Of: <b>\nBy: you"),
                AllOf(HasSubstr("It is too old."), HasSubstr("Of: &lt;b&gt;\nBy: you")));
    // Without details of the certificate, nothing follows the sentences.
    EXPECT_THAT(certificatePage(address, "It is too old.", ""), HasSubstr("was not opened.</p>"));
}

TEST(StatusPagesTest, LinesOfATextStayLines) {
    EXPECT_EQ(htmlText("a\n<b>\u202ec"), "a\n&lt;b&gt;c");
}

} // namespace
} // namespace quorvel
