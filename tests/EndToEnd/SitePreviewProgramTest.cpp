// Asking sites for their icon and title, with the real program and a site of the tests' own.
#include "LaunchKit/IconCheck.h"
#include "LaunchKit/Icons/SimplePng.h"
#include "LaunchKit/Targets/SitePreview.h"
#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>

#include <chrono>
#include <csignal>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::chrono_literals;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

class SitePreviewProgramTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!fs::exists("/usr/bin/python3")) {
            GTEST_SKIP() << "python3 is not installed";
        }
        Process::Options options;
        options.executable = "/usr/bin/python3";
        options.arguments = {QUORVEL_PREVIEW_SITE, folder_ / "port", folder_ / "log"};
        server_.emplace(Process::run(options));
        ASSERT_TRUE(waitUntil([&] { return fs::exists(folder_ / "port"); }, 60s));
    }
    void TearDown() override {
        if (server_) {
            ::kill(server_->identifier(), SIGKILL);
            (void)server_->waitUntilExit();
        }
    }

    SitePreview preview(const std::string& page, std::chrono::milliseconds patience = 20s) {
        fs::remove_all(folder_ / "own");
        fs::create_directory(folder_ / "own");
        return fetchSitePreview(QUORVEL_SITE_PREVIEW, site() + page, folder_ / "own", patience);
    }
    // Returns why it fails.
    std::string failure(const std::string& page, std::chrono::milliseconds patience = 20s) {
        try {
            (void)preview(page, patience);
            return "it does not";
        } catch (const SitePreviewError& error) {
            return error.description();
        }
    }
    [[nodiscard]] std::string site() const { return "http://127.0.0.1:" + read(folder_ / "port"); }

    TemporaryFolder folder_;
    std::optional<Process> server_{};
};

TEST_F(SitePreviewProgramTest, ASiteOffersItsTitleAndItsIcon) {
    const SitePreview found = preview("/mail/");
    EXPECT_EQ(found.title, "Mail & more");
    ASSERT_TRUE(found.icon);
    EXPECT_TRUE(isDrawableIcon(*found.icon));
    EXPECT_EQ(preview("/moved/1").title, "Moved");
    EXPECT_THAT(read(folder_ / "log"), Not(HasSubstr("id=1"))) << "no cookie is sent back";
}

TEST_F(SitePreviewProgramTest, APictureIsHandedOverAsASmallPng) {
    for (const char* page : {"/mail/", "/large-icon", "/drawn-icon", "/second-icon"}) {
        EXPECT_TRUE(preview(page).icon) << page;
        EXPECT_TRUE(isSimplePng(read(folder_ / "own/icon"), 512)) << page;
    }
    EXPECT_EQ(preview("/wide-icon").icon, std::nullopt) << "it is too wide to be one";
}

TEST_F(SitePreviewProgramTest, WhatAHostileSiteOffersIsHarmless) {
    const SitePreview hostile = preview("/hostile");
    EXPECT_EQ(hostile.title, "evil [31m");
    EXPECT_TRUE(hostile.icon) << "the one that is a file of the web";
    for (const char* page : {"/broken-icon", "/bomb-icon", "/huge-icon"}) {
        EXPECT_EQ(preview(page).icon, std::nullopt) << page;
    }
    EXPECT_EQ(preview("/endless-page").title, "Endless") << "only the beginning is read";
    EXPECT_LE(fs::file_size(folder_ / "own/title"), 1000U);
}

TEST_F(SitePreviewProgramTest, ASiteThatDoesNotAnswerIsReported) {
    EXPECT_EQ(failure("/nothing-there"), "the server answers 404");
    EXPECT_EQ(failure("/round/1"), "it redirects too often");
    EXPECT_NE(failure("/to-file"), "it does not");
    EXPECT_THROW((void)fetchSitePreview(QUORVEL_SITE_PREVIEW, "file:///etc/passwd", folder_.path()),
                 SitePreviewError);
    EXPECT_THROW(
        (void)fetchSitePreview(QUORVEL_SITE_PREVIEW, "http://127.0.0.1:1/", folder_.path()),
        SitePreviewError);
    EXPECT_THROW((void)fetchSitePreview(QUORVEL_SITE_PREVIEW, site() + "/mail/", ""),
                 SitePreviewError);
    EXPECT_FALSE(fs::exists("reason")) << "in the folder where the program was started";
    EXPECT_THROW((void)fetchSitePreview("/nonexistent", site() + "/mail/", folder_.path()),
                 SitePreviewError);
    EXPECT_EQ(failure("/never", 300ms), "the site takes too long");
}

TEST_F(SitePreviewProgramTest, OnlyASimplePngIsDecodedHere) {
    const std::string black =
        "iVBORw0KGgoAAAANSUhEUgAAAEAAAABACAIAAAAlC+"
        "aJAAAAIklEQVR42u3BAQ0AAADCoPdPbQ8HFAAAAAAAAAAAAAAA8G4wQAAB7OHIlwAAAABJRU5ErkJggg==";
    const auto iconAfter = [&](const std::string& more) {
        write(folder_ / "stand-in",
              "#!/bin/sh\n{ echo " + black + " | base64 -d; " + more + "; } >\"$2/icon\"\n");
        fs::permissions(folder_ / "stand-in", fs::perms::owner_all);
        return fetchSitePreview(folder_ / "stand-in", site(), folder_.path()).icon;
    };
    EXPECT_TRUE(iconAfter("true"));
    EXPECT_EQ(iconAfter("echo more"), std::nullopt);
}

TEST_F(SitePreviewProgramTest, AProgramThatFailsIsNotReportedAsASlowSite) {
    const auto failureOf = [&](const std::string& script) {
        write(folder_ / "stand-in", "#!/bin/sh\n" + script + "\n");
        fs::permissions(folder_ / "stand-in", fs::perms::owner_all);
        try {
            (void)fetchSitePreview(folder_ / "stand-in", site(), folder_.path());
            return std::string("it does not");
        } catch (const SitePreviewError& error) {
            return error.description();
        }
    };
    EXPECT_EQ(failureOf("exit 3"), "the program that asks it has failed, with status 3");
    EXPECT_EQ(failureOf("kill -ALRM $$"), "the site takes too long");
    EXPECT_EQ(failureOf("echo because; exit 3"), "because");
    fs::create_directory(folder_ / "own");
    fs::create_directory(folder_ / "own/title");
    EXPECT_THROW((void)fetchSitePreview(QUORVEL_SITE_PREVIEW, site() + "/mail/", folder_ / "own"),
                 SitePreviewError)
        << "the title can't be written";
    EXPECT_EQ(read(folder_ / "own/reason"), "what the site sends can’t be written\n");
}

} // namespace
} // namespace quorvel
