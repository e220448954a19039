#include "Platform/files/ContainedFolder.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

class ContainedFolderTest : public ::testing::Test {
protected:
    ContainedFolderTest() {
        fs::create_directory(base());
        fs::create_directory(folder_ / "outside");
    }

    [[nodiscard]] fs::path base() const { return folder_ / "base"; }
    [[nodiscard]] bool make(const std::string& below) const {
        return ensureFolderBelow(base(), base().string() + below);
    }
    [[nodiscard]] std::map<std::string, std::string> tree() const { return treeOf(folder_.path()); }

    TemporaryFolder folder_;
};

TEST_F(ContainedFolderTest, IsCreatedWithItsParentsForItsUserOnly) {
    EXPECT_TRUE(make("/a/b c/.d"));
    for (const char* made : {"a", "a/b c", "a/b c/.d"}) {
        struct stat status {};
        ASSERT_EQ(::stat((base() / made).c_str(), &status), 0) << made;
        EXPECT_EQ(status.st_mode & 07777, 0700U) << made;
    }
}

TEST_F(ContainedFolderTest, FilesAndLinksAreReplacedAndNotFollowed) {
    const std::string file = base().string() + "/a/file";
    const std::string link = base().string() + "/a/link";
    EXPECT_TRUE(replaceFileBelow(base(), file, "first"));
    EXPECT_TRUE(replaceFileBelow(base(), file, "second"));
    EXPECT_EQ(read(file), "second");
    EXPECT_EQ(fs::status(file).permissions(), fs::perms{0600});
    write(folder_ / "outside/kept", "kept");
    for (const std::string& path : {file, link}) {
        fs::remove(path);
        fs::create_symlink(folder_ / "outside/kept", path);
    }
    EXPECT_TRUE(replaceFileBelow(base(), file, "third"));
    EXPECT_TRUE(replaceLinkBelow(base(), link, "/somewhere"));
    EXPECT_EQ(read(file), "third");
    EXPECT_EQ(fs::read_symlink(link), "/somewhere");
    EXPECT_EQ(read(folder_ / "outside/kept"), "kept");
    EXPECT_TRUE(replaceFileBelow(base(), base().string() + "/top", "x")) << "in the base itself";
}

TEST_F(ContainedFolderTest, NothingIsReplacedOutsideOrInPlaceOfAFolder) {
    fs::create_directory(base() / "folder");
    fs::create_directory_symlink(folder_ / "outside", base() / "link");
    const auto before = tree();
    for (const std::string& path :
         {base().string() + "/folder", base().string() + "/link/file", base().string() + "/..",
          base().string() + "/../file", base().string() + "/", (folder_ / "outside/file").string(),
          base().string() + "/nul\0"s, "file"s, ""s}) {
        EXPECT_FALSE(replaceFileBelow(base(), path, "x")) << path;
        EXPECT_FALSE(replaceLinkBelow(base(), path, "/x")) << path;
    }
    EXPECT_EQ(tree(), before);
}

TEST_F(ContainedFolderTest, MayExistAlreadyAndKeepsItsContents) {
    write(base() / "a/file", "x");
    fs::permissions(base() / "a", fs::perms{0755});
    EXPECT_TRUE(make("/a"));
    EXPECT_EQ(read(base() / "a/file"), "x");
    EXPECT_EQ(fs::status(base() / "a").permissions(), fs::perms{0755});
}

TEST_F(ContainedFolderTest, MayBeSpelledWithExtraSlashesAndDots) {
    EXPECT_TRUE(make("//a/./b//"));
    EXPECT_TRUE(fs::is_directory(base() / "a/b"));
    EXPECT_TRUE(ensureFolderBelow(base().string() + "/", base().string() + "/c"));
    EXPECT_TRUE(fs::is_directory(base() / "c"));
}

TEST_F(ContainedFolderTest, IsNotCreatedElsewhere) {
    const auto before = tree();
    EXPECT_FALSE(ensureFolderBelow(base(), (folder_ / "outside/x").string()));
    EXPECT_FALSE(make("x/y")) << "base + x is another folder";
    EXPECT_FALSE(make("/../outside/x"));
    EXPECT_FALSE(make("/.."));
    EXPECT_FALSE(ensureFolderBelow(base(), "relative"));
    EXPECT_FALSE(ensureFolderBelow(base(), ""));
    EXPECT_FALSE(make("/a\0/b"s));
    EXPECT_FALSE(ensureFolderBelow(folder_ / "none", (folder_ / "none/x").string()));
    EXPECT_EQ(tree(), before);
}

TEST_F(ContainedFolderTest, IsNotCreatedThroughALink) {
    fs::create_directory_symlink(folder_ / "outside", base() / "link");
    fs::create_directory_symlink(folder_ / "outside/new", base() / "dangling");
    const auto before = tree();
    EXPECT_FALSE(make("/link/x"));
    EXPECT_FALSE(make("/link"));
    EXPECT_FALSE(make("/dangling/x"));
    EXPECT_EQ(tree(), before);
}

TEST_F(ContainedFolderTest, IsNotCreatedInPlaceOfAFile) {
    write(base() / "file", "x");
    EXPECT_FALSE(make("/file"));
    EXPECT_FALSE(make("/file/x"));
    EXPECT_EQ(read(base() / "file"), "x");
}

} // namespace
} // namespace quorvel
