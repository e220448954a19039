#include "WebHost/Settings/SiteSettings.h"

#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

class SiteSettingsTest : public ::testing::Test {
protected:
    [[nodiscard]] SiteSettingsStore store() const { return {home_.path(), file()}; }
    [[nodiscard]] std::string file() const { return (home_ / "web/settings.json").string(); }

    TemporaryFolder home_;
};

SiteSettings everyValue() {
    SiteSettings settings;
    settings.colors = PageColors::dark;
    settings.checksSpelling = true;
    settings.spellingLanguages = {"en_US", "de_DE"};
    settings.userAgent = "Mozilla/5.0 (Test)";
    settings.proxy = ProxyUse::address;
    settings.proxyAddress = "socks5://[::1]:1080";
    settings.links = {{"a.b", "inside"}, {"c.d", "outside"}};
    return settings;
}

TEST_F(SiteSettingsTest, AMissingFileHasTheDefaults) {
    EXPECT_EQ(store().settings(), SiteSettings());
    EXPECT_EQ(store().problem(), "");
}

TEST_F(SiteSettingsTest, WhatIsChosenIsKept) {
    SiteSettingsStore first = store();
    EXPECT_EQ(first.change(everyValue()), "");
    EXPECT_EQ(store().settings(), everyValue());
    struct stat facts {};
    ASSERT_EQ(::stat(file().c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
}

TEST_F(SiteSettingsTest, WhatCantBeUsedChangesNothing) {
    SiteSettingsStore first = store();
    ASSERT_EQ(first.change(everyValue()), "");
    const auto refused = [&](auto change) {
        SiteSettings settings = everyValue();
        change(settings);
        const std::string problem = first.change(settings);
        EXPECT_EQ(store().settings(), everyValue());
        EXPECT_EQ(first.settings(), everyValue());
        return problem;
    };
    for (const char* agent : {"a\nb", "a\r\nCookie: x", "\u00e4", " a", "a ", "a\x7f"}) {
        EXPECT_THAT(refused([&](SiteSettings& all) { all.userAgent = agent; }),
                    HasSubstr("user agent"))
            << agent;
    }
    EXPECT_THAT(refused([](SiteSettings& all) { all.userAgent = std::string(513, 'x'); }),
                HasSubstr("user agent"));
    for (const char* proxy :
         {"", "proxy", "proxy:80", "ftp://a:80", "http://a", "http://a:0", "http://a:65536",
          "http://a:80/", "http://:80", "http://a:8x", "http://a b:80", "file:///etc/passwd"}) {
        EXPECT_THAT(refused([&](SiteSettings& all) { all.proxyAddress = proxy; }),
                    HasSubstr("must be like"))
            << proxy;
    }
    EXPECT_THAT(refused([](SiteSettings& all) { all.proxyAddress = "http://me:secret@a:80"; }),
                HasSubstr("password"));
    for (const char* language : {"e", "en/../../x", "en US"}) {
        EXPECT_THAT(refused([&](SiteSettings& all) { all.spellingLanguages = {language}; }),
                    HasSubstr("Languages"))
            << language;
    }
    EXPECT_THAT(refused([](SiteSettings& all) { all.links["a/b"] = "inside"; }), HasSubstr("host"));
    EXPECT_THAT(refused([](SiteSettings& all) { all.links["a.b"] = "maybe"; }), HasSubstr("host"));
    EXPECT_THAT(refused([](SiteSettings& all) {
                    for (int count = 0; count <= 500; ++count) {
                        all.links["host" + std::to_string(count)] = "inside";
                    }
                }),
                HasSubstr("too many"));
}

TEST_F(SiteSettingsTest, ADamagedFileIsReportedAndNeverOverwritten) {
    int number = 0;
    for (const char* text :
         {"{", R"({"colors":"purple"})", R"({"userAgent":"a\nb"})", R"({"proxy":"address"})"}) {
        write(file(), text);
        SiteSettingsStore damaged = store();
        EXPECT_EQ(damaged.settings(), SiteSettings()) << text;
        EXPECT_NE(damaged.problem(), "") << text;
        EXPECT_EQ(read(file()), text) << "reading changes nothing";
        EXPECT_EQ(damaged.change(everyValue()), "");
        EXPECT_EQ(damaged.problem(), "");
        EXPECT_EQ(read(file() + ".damaged-" + std::to_string(++number)), text);
        EXPECT_EQ(store().settings(), everyValue());
    }
    fs::remove(file());
    fs::create_directories(fs::path(file()));
    SiteSettingsStore blocked = store();
    EXPECT_EQ(blocked.change(everyValue()), "The settings can’t be written.");
    EXPECT_EQ(blocked.settings(), everyValue()) << "they hold for now";
    EXPECT_TRUE(fs::is_directory(file()));
}

TEST_F(SiteSettingsTest, ARuleAppliesToAHostAndThoseBelowIt) {
    SiteSettings settings;
    settings.links = {{"example.com", "outside"}, {"mail.example.com", "inside"}, {"b.c", "x"}};
    EXPECT_EQ(ruleFor(settings, "example.com"), LinkPlace::outside);
    EXPECT_EQ(ruleFor(settings, "www.example.com"), LinkPlace::outside);
    EXPECT_EQ(ruleFor(settings, "a.mail.example.com"), LinkPlace::inside);
    EXPECT_EQ(ruleFor(settings, "notexample.com"), std::nullopt);
    EXPECT_EQ(ruleFor(settings, "com"), std::nullopt);
    EXPECT_EQ(ruleFor(settings, ""), std::nullopt);
    EXPECT_EQ(ruleFor(settings, "b.c"), std::nullopt);
}

TEST_F(SiteSettingsTest, ARuleWrittenByHandMayHaveCapitals) {
    write(file(), R"({"links":{"Example.COM":"outside"}})");
    EXPECT_EQ(ruleFor(store().settings(), "www.example.com"), LinkPlace::outside);
}

TEST_F(SiteSettingsTest, WhatTheUserTypesIsUnderstood) {
    EXPECT_EQ(ruleHost("Example.COM"), "example.com");
    EXPECT_EQ(ruleHost(" https://example.com:81/x?y "), "example.com");
    for (const char* typed : {"", " ", "mailto:a@b.c", "a b", "<b>", ".", "https://"}) {
        EXPECT_EQ(ruleHost(typed), "") << typed;
    }
    EXPECT_THAT(languagesIn("en-US, de_DE;fr"), ElementsAre("en_US", "de_DE", "fr"));
    EXPECT_THAT(languagesIn(" , "), IsEmpty());
}

TEST_F(SiteSettingsTest, TheAddressOfAProxyHasParts) {
    EXPECT_EQ(proxyServer(everyValue()), (ProxyServer{"socks5", "::1", "1080"}));
    SiteSettings settings;
    settings.proxy = ProxyUse::address;
    settings.proxyAddress = "HTTP://Proxy.test:8080";
    EXPECT_EQ(proxyServer(settings), (ProxyServer{"http", "proxy.test", "8080"}));
    settings.proxyAddress = "http://proxy.test";
    EXPECT_EQ(proxyServer(settings), std::nullopt);
    settings.proxyAddress = "http://proxy.test:8080";
    settings.proxy = ProxyUse::system;
    EXPECT_EQ(proxyServer(settings), std::nullopt) << "it is not in use";
}

} // namespace
} // namespace quorvel
