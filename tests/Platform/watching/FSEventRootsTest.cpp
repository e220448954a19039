#include "tests/Platform/watching/Recording.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

TEST(FSEventRootsTest, ThatIsMissingIsRecordedOnceItAppears) {
    const TemporaryFolder folder;
    Recording recording(folder / "Library");
    write(folder / "Library/Preferences/x.plist", "text");
    recording.stop();
    EXPECT_TRUE(recording.at(folder / "Library")->created);
    EXPECT_TRUE(recording.has(folder / "Library/Preferences/x.plist"));
    EXPECT_TRUE(recording.isComplete());
}

TEST(FSEventRootsTest, WhoseParentsAreMissingIsRecordedOnceItAppears) {
    const TemporaryFolder folder;
    Recording recording(folder / "a/b/Library");
    write(folder / "a/b/Library/file", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "a/b/Library/file"));
    EXPECT_FALSE(recording.has(folder / "a"));
}

TEST(FSEventRootsTest, ThatNeverAppearsIsACompleteRecordOfNothing) {
    const TemporaryFolder folder;
    Recording recording(folder / "Library");
    EXPECT_THAT(recording.stop(), IsEmpty());
    EXPECT_TRUE(recording.isComplete());
}

TEST(FSEventRootsTest, ThatIsRemovedAndMadeAgainIsRecordedAgain) {
    const TemporaryFolder folder;
    write(folder / "Library/old", "text");
    Recording recording(folder / "Library");
    fs::remove_all(folder / "Library");
    write(folder / "Library/new", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "Library/new"));
}

TEST(FSEventRootsTest, ThatIsRemovedManyTimesIsRecordedEveryTime) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "Library");
    Recording recording(folder / "Library");
    for (int turn = 0; turn < 100; ++turn) {
        fs::remove_all(folder / "Library");
        fs::create_directory(folder / "Library");
    }
    write(folder / "Library/sub/file", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "Library/sub/file"));
}

TEST(FSEventRootsTest, ThatIsMovedAwayIsNoLongerRecorded) {
    const TemporaryFolder folder;
    write(folder / "Library/sub/file", "text");
    Recording recording(folder / "Library");
    fs::rename(folder / "Library", folder / "gone");
    write(folder / "gone/sub/file", "more");
    EXPECT_THAT(recording.stop(), IsEmpty());
}

TEST(FSEventRootsTest, ThatIsReplacedIsRecordedAsTheNewOne) {
    const TemporaryFolder folder;
    write(folder / "Library/old", "text");
    write(folder / "other/sub/file", "text");
    Recording recording(folder / "Library");
    fs::rename(folder / "Library", folder / "gone");
    fs::rename(folder / "other", folder / "Library");
    write(folder / "gone/into-old", "text");
    write(folder / "Library/sub/into-new", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "Library/sub/file"));
    EXPECT_TRUE(recording.has(folder / "Library/sub/into-new"));
    EXPECT_FALSE(recording.has(folder / "Library/into-old"));
}

TEST(FSEventRootsTest, WhoseParentIsReplacedIsRecordedAsTheNewOne) {
    const TemporaryFolder folder;
    write(folder / "home/Library/old", "text");
    write(folder / "other/Library/old", "text");
    Recording recording(folder / "home/Library");
    fs::rename(folder / "home", folder / "gone");
    fs::rename(folder / "other", folder / "home");
    write(folder / "home/Library/new", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "home/Library/new"));
}

TEST(FSEventRootsTest, ThatIsGivenByALinkKeepsTheGivenName) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "real");
    fs::create_directory(folder / "real/old");
    fs::create_directory_symlink(folder / "real", folder / "link");
    Recording recording(folder / "link");
    write(folder / "real/old/file", "text");
    write(folder / "real/sub/file", "text");
    recording.stop();
    EXPECT_THAT(recording.paths(), ElementsAre(folder / "link/old/file", folder / "link/sub",
                                               folder / "link/sub/file"));
}

TEST(FSEventRootsTest, ThatIsGivenWithSlashesAtTheEndHasPlainPaths) {
    const TemporaryFolder folder;
    Recording recording(fs::path(folder.path().native() + "//"));
    write(folder / "file", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "file"));
}

TEST(FSEventRootsTest, InsideAnotherIsRecordedOnce) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "inner");
    Recording recording(std::vector{folder / "inner", folder.path()});
    fs::create_directory(folder / "inner/dir");
    fs::create_directory(folder / "outer");
    EXPECT_THAT(recording.stop(),
                ElementsAre(Change{folder / "inner/dir", true, true, false, false},
                            Change{folder / "outer", true, true, false, false}));
}

TEST(FSEventRootsTest, AroundAnotherRecordsBoth) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "inner");
    Recording recording(std::vector{folder.path(), folder / "inner"});
    fs::create_directory(folder / "inner/dir");
    EXPECT_THAT(recording.stop(),
                ElementsAre(Change{folder / "inner/dir", true, true, false, false}));
}

TEST(FSEventRootsTest, GivenTwiceIsRecordedOnce) {
    const TemporaryFolder folder;
    Recording recording(std::vector{folder.path(), folder.path()});
    fs::create_directory(folder / "dir");
    EXPECT_EQ(recording.stop().size(), 1U);
}

TEST(FSEventRootsTest, ThatIsAFileIsLeftAlone) {
    const TemporaryFolder folder;
    write(folder / "file", "text");
    Recording recording(folder / "file");
    write(folder / "file", "more");
    EXPECT_THAT(recording.stop(), IsEmpty());
}

} // namespace
} // namespace quorvel
