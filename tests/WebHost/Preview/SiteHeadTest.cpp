#include "WebHost/Preview/SiteHead.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(SiteHeadTest, TheTitleAndTheLargestIconComeFirst) {
    const SiteHead head = siteHead(R"(<!DOCTYPE html><HTML><head><meta charset=utf-8>
<TITLE lang="en"> Mail &amp;
 more </TITLE>
<link rel=stylesheet href=style.css>
<link rel="shortcut icon" href="/favicon.ico">
<LINK REL='icon' sizes="16x16 192x192" href='a.png?x=1&amp;y=2'/>
<link href="touch.png" rel="apple-touch-icon">
<link rel="icon" type="image/svg+xml" sizes="any" href="b.svg">
</head><body><title>No</title><link rel=icon sizes=512x512 href=late.png>)");
    EXPECT_EQ(head.title, "Mail &  more");
    EXPECT_THAT(head.icons, ElementsAre("b.svg", "a.png?x=1&y=2", "touch.png", "/favicon.ico"));
}

TEST(SiteHeadTest, ANumberThatIsTooLargeIsNoSize) {
    const std::string digits(500'000, '9');
    for (const std::string& huge : {digits, digits + "512", std::string("99512x99512")}) {
        EXPECT_THAT(siteHead("<link rel=icon href=huge sizes=" + huge +
                             "><link rel=icon href=small sizes=33x33>")
                        .icons,
                    ElementsAre("small", "huge"))
            << huge.size();
    }
    EXPECT_THAT(siteHead("<link rel=icon href=a sizes='99999999999x1 48x48'>"
                         "<link rel=icon href=b sizes=47x47>")
                    .icons,
                ElementsAre("a", "b"));
}

TEST(SiteHeadTest, TheMostCommonReferencesAreResolved) {
    EXPECT_EQ(siteHead("<title>&lt;&gt;&quot;&apos;&#39;&amp;a&nbsp;b&copy;</title>").title,
              "<>\"''&a b&copy;");
}

TEST(SiteHeadTest, AQuotationMayContainTheEndOfATag) {
    EXPECT_THAT(siteHead("<link title='a>b' rel=icon href='c>d'>").icons, ElementsAre("c>d"));
    EXPECT_THAT(siteHead("<linker rel=icon href=a><link relation=icon href=a>").icons, IsEmpty());
    EXPECT_THAT(siteHead("<link rel=\"mask-icon\" href=a><link rel=icon>").icons, IsEmpty());
}

TEST(SiteHeadTest, WhatIsCutOffOrTooMuchIsHarmless) {
    EXPECT_EQ(siteHead("<title>Half").title, "Half");
    EXPECT_EQ(siteHead("<title lang='>'>Whole</title>").title, "Whole");
    for (const char* html :
         {"", "<", "<title", "<title>", "<title ", "<title lang='x", "<link", "<link rel",
          "<link rel=", "<link rel='", "<link rel='icon' href='", "<link / = >", "&", "<&"}) {
        EXPECT_EQ(siteHead(html).title, "") << html;
        EXPECT_THAT(siteHead(html).icons, IsEmpty()) << html;
    }
    std::string many;
    for (int count = 0; count < 10'000; ++count) {
        many += "<link rel=icon href=a sizes=99999999999999999999x1>";
    }
    EXPECT_EQ(siteHead(many).icons.size(), 50U);
    EXPECT_LE(siteHead("<title>" + std::string(1'000'000, 'x')).title.size(), 1000U);
    const auto icons = [](std::size_t length) {
        return siteHead("<link rel=icon href=" + std::string(length, 'x') + ">").icons;
    };
    EXPECT_EQ(icons(2000).size(), 1U);
    EXPECT_THAT(icons(2001), IsEmpty());
}

} // namespace
} // namespace quorvel
