#include "Platform/removal/FileRemoval.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"

#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

class FileRemovalTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    void expectRefused(const fs::path& path) const {
        write(home_ / "Documents/precious", "x");
        EXPECT_TRUE(holdsUserHome(path)) << path;
        EXPECT_THROW(removeItem(path), PlatformError) << path;
        EXPECT_EQ(read(home_ / "Documents/precious"), "x") << path;
    }

    TemporaryFolder folder_;
    TemporaryHome home_;
};

TEST_F(FileRemovalTest, AFolderIsRemovedWithEverythingInIt) {
    write(at("a/b/file"), "x");
    write(at("a/.hidden"), "x");
    ::mkfifo(at("a/fifo").c_str(), 0600);
    removeItem(at("a"));
    EXPECT_FALSE(itemOrLinkExists(at("a")));
}

TEST_F(FileRemovalTest, RemovingNothingIsAnError) {
    EXPECT_THROW(removeItem(at("none")), PlatformError);
}

TEST_F(FileRemovalTest, ALinkIsRemovedAndItsTargetStays) {
    write(at("kept/file"), "x");
    fs::create_directory_symlink(at("kept"), at("link"));
    fs::create_directory_symlink(at("kept"), at("slashed"));
    removeItem(at("link"));
    removeItem(at("slashed").native() + "/");
    EXPECT_FALSE(itemOrLinkExists(at("link")));
    EXPECT_FALSE(itemOrLinkExists(at("slashed")));
    EXPECT_EQ(read(at("kept/file")), "x");
}

TEST_F(FileRemovalTest, LinksInsideAreNotFollowed) {
    write(at("kept/file"), "x");
    fs::create_directory(at("gone"));
    fs::create_directory_symlink(at("kept"), at("gone/folder"));
    fs::create_symlink(at("kept/file"), at("gone/file"));
    fs::create_directory_symlink("..", at("gone/up"));
    removeItem(at("gone"));
    EXPECT_FALSE(itemOrLinkExists(at("gone")));
    EXPECT_EQ(read(at("kept/file")), "x");
}

TEST_F(FileRemovalTest, ADanglingLinkIsRemoved) {
    fs::create_symlink("nowhere", at("link"));
    removeItem(at("link"));
    EXPECT_FALSE(itemOrLinkExists(at("link")));
}

TEST_F(FileRemovalTest, APathWithANulIsRefused) {
    write(at("file"), "x");
    EXPECT_THROW(removeItem(at("file").native() + "\0z"s), PlatformError);
    EXPECT_EQ(read(at("file")), "x");
}

TEST_F(FileRemovalTest, TheHomeIsRefusedHoweverItIsWritten) {
    const std::string home = home_.path();
    fs::create_directories(home_ / "sub");
    expectRefused(home);
    expectRefused(home + "/");
    expectRefused(home + "//");
    expectRefused(home + "/.");
    expectRefused(home + "/sub/..");
    expectRefused(home + "/sub/../");
    expectRefused(home + "/sub/../../" + fs::path(home).filename().string());
}

TEST_F(FileRemovalTest, AFolderThatContainsTheHomeIsRefused) {
    expectRefused(home_.path().parent_path());
    expectRefused(home_.path().parent_path().parent_path());
    expectRefused("/");
    expectRefused("//");
    expectRefused(home_ / "..");
    expectRefused(home_ / "../.");
}

TEST_F(FileRemovalTest, TheHomeIsRefusedThroughALink) {
    fs::create_directory_symlink(home_.path(), at("link"));
    expectRefused(at("link"));
    expectRefused(at("link/"));
    expectRefused(at("link/."));
}

TEST_F(FileRemovalTest, TheHomeIsRefusedThroughALinkInTheMiddle) {
    fs::create_directory_symlink(home_.path().parent_path(), at("middle"));
    expectRefused(at("middle") / home_.path().filename());
    expectRefused(at("middle/."));
    fs::create_directories(home_ / "sub");
    fs::create_directory_symlink(home_ / "sub", at("into"));
    expectRefused(at("into/.."));
}

TEST_F(FileRemovalTest, TheHomeIsRefusedWhenItIsALinkItself) {
    fs::create_directory(at("real"));
    fs::create_directory_symlink(at("real"), at("home"));
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", at("home"));
    EXPECT_THROW(removeItem(at("real")), PlatformError);
    EXPECT_THROW(removeItem(at("home")), PlatformError);
    EXPECT_THROW(removeItem(folder_.path()), PlatformError);
    EXPECT_TRUE(itemExists(at("home")));
}

TEST_F(FileRemovalTest, TheHomeIsRefusedFromWithin) {
    const fs::path before = fs::current_path();
    fs::current_path(home_.path());
    expectRefused(".");
    expectRefused("./");
    expectRefused("..");
    fs::current_path(before);
}

TEST_F(FileRemovalTest, TheHomesOfTheVariableAndTheUserDatabaseAreRefusedToo) {
    fs::create_directory(at("other"));
    const ScopedEnvironment variable("HOME", at("other"));
    EXPECT_THROW(removeItem(at("other")), PlatformError);
    EXPECT_TRUE(itemExists(at("other")));
}

TEST_F(FileRemovalTest, AFolderInTheHomeMayBeRemoved) {
    write(home_ / "QuorvelInstances/Work/file", "x");
    removeItem(home_ / "QuorvelInstances/Work");
    EXPECT_FALSE(itemExists(home_ / "QuorvelInstances/Work"));
    EXPECT_TRUE(itemExists(home_ / "QuorvelInstances"));
}

TEST_F(FileRemovalTest, AnItemThatMayNotBeRemovedIsAnError) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        write(at("closed/file"), "x");
        fs::permissions(at("closed"), fs::perms{0555});
        try {
            removeItem(at("closed/file"));
        } catch (const PlatformError& error) {
            return error.code() == std::errc::permission_denied && read(at("closed/file")) == "x";
        }
        return false;
    }));
}

TEST_F(FileRemovalTest, AVeryDeepTreeIsRemoved) {
    const fs::path before = fs::current_path();
    fs::create_directory(at("deep"));
    fs::current_path(at("deep"));
    for (int level = 0; level < 3000; ++level) {
        fs::create_directory("d");
        fs::current_path("d");
    }
    fs::current_path(before);
    removeItem(at("deep"));
    EXPECT_FALSE(itemOrLinkExists(at("deep")));
}

} // namespace
} // namespace quorvel
