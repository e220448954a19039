#include "WebHost/Links/OutsideLinks_linux.h"

#include "LinkDoor/LinkSession.h"
#include "Platform/processes/FileMask.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// Programs that write down how they were called.
class OutsideLinksTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* name : {"door", "xdg-open"}) {
            write(folder_ / name,
                  "#!/bin/sh\nprintf '%s\\n' \"$HOME\" \"$QUORVEL_CLONE_HOME\" \"$#\" \"$1\" "
                  ">\"$0.part\" && mv \"$0.part\" \"$0.called\"\n");
            fs::permissions(folder_ / name, fs::perms{0755});
        }
        fs::create_directory(cloneHome());
        session_ = currentEnvironment();
        session_["HOME"] = "/home/user";
        session_["QUORVEL_LINK_DOOR"] = (folder_ / "door").string();
        clone_ = session_;
        clone_.erase("QUORVEL_LINK_DOOR");
        clone_["HOME"] = cloneHome();
    }

    [[nodiscard]] std::string called(const std::string& program) const {
        const fs::path file = folder_ / (program + ".called");
        return waitUntil([&] { return fs::exists(file); }) ? read(file) : "not called";
    }

    [[nodiscard]] std::string cloneHome() const { return (folder_ / "clone").string(); }
    [[nodiscard]] OutsideLinks links() const { return {cloneHome(), {}, session_, clone_, 022}; }

    TemporaryFolder folder_{};
    ScopedEnvironment path_{"PATH", folder_.path().string() + ":/usr/bin:/bin"};
    Environment session_{};
    Environment clone_{};
};

TEST_F(OutsideLinksTest, WebAndMailAddressesAreForTheProgramThatOpensLinks) {
    EXPECT_TRUE(links().open("https://example.com/?a=b&c='d'"));
    EXPECT_EQ(called("door"),
              cloneHome() + "\n" + cloneHome() + "\n1\nhttps://example.com/?a=b&c='d'\n");
    const auto session = readLinkSession(cloneHome());
    ASSERT_TRUE(session);
    EXPECT_EQ(session->outside(clone_).at("HOME"), "/home/user");
    EXPECT_EQ(session->opener, "");
}

TEST_F(OutsideLinksTest, OtherAddressesAreForXdgOpenInTheSession) {
    EXPECT_TRUE(links().open("tel:+49$(touch x)"));
    EXPECT_EQ(called("xdg-open"), "/home/user\n\n1\ntel:+49$(touch x)\n");
}

TEST_F(OutsideLinksTest, WithoutThatProgramXdgOpenIsAsked) {
    session_["QUORVEL_LINK_DOOR"] = "/nonexistent";
    if (fs::exists("/usr/libexec/quorvel/quorvel-link-door")) {
        GTEST_SKIP() << "another one is installed";
    }
    EXPECT_TRUE(links().open("https://example.com/"));
    EXPECT_EQ(called("xdg-open"), "/home/user\n\n1\nhttps://example.com/\n");
}

TEST_F(OutsideLinksTest, TheBrowserMakesFilesAsTheSessionDoes) {
    for (const char* name : {"door", "xdg-open"}) {
        write(folder_ / name, "#!/bin/sh\numask >\"$0.part\" && mv \"$0.part\" \"$0.called\"\n");
    }
    const OutsideLinks outside = links();
    const ScopedFileMask closed(077);
    EXPECT_TRUE(outside.open("https://example.com/"));
    EXPECT_EQ(called("door"), "0022\n");
    EXPECT_TRUE(outside.open("tel:1"));
    EXPECT_EQ(called("xdg-open"), "0022\n");
    EXPECT_EQ(setFileMask(077), 077U) << "ours stays";
}

TEST_F(OutsideLinksTest, WhatIsNotAnAddressStartsNothing) {
    EXPECT_FALSE(links().open("--help"));
    EXPECT_FALSE(links().open("/etc/passwd"));
    EXPECT_FALSE(links().open("tel:" + std::string(40'000, '1')));
    EXPECT_FALSE(fs::exists(folder_ / "xdg-open.called"));
}

} // namespace
} // namespace quorvel
