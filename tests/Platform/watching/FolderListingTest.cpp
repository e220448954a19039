#include "Platform/watching/FolderListing_linux.h"
#include "tests/support/TemporaryHome.h"

#include <cerrno>
#include <gmock/gmock.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::IsEmpty;
using ::testing::Pair;
using ::testing::UnorderedElementsAre;
namespace fs = std::filesystem;

std::vector<std::pair<std::string, bool>> listed(const fs::path& folder) {
    const std::vector<FolderItem> found = listFolder(folder, false).value();
    std::vector<std::pair<std::string, bool>> items;
    items.reserve(found.size());
    for (const FolderItem& item : found) {
        items.emplace_back(item.name, item.isDir);
    }
    return items;
}

TEST(FolderListingTest, ListsEveryItemAndKnowsFoldersFromLinksToThem) {
    const TemporaryFolder folder;
    EXPECT_THAT(listed(folder.path()), IsEmpty());
    write(folder / ".hidden", "text");
    fs::create_directory(folder / "folder");
    fs::create_directory_symlink(folder / "folder", folder / "link");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_THAT(listed(folder.path()),
                UnorderedElementsAre(Pair(".hidden", false), Pair("folder", true),
                                     Pair("link", false), Pair("pipe", false)));
}

TEST(FolderListingTest, FollowsALinkInPlaceOfTheFolderOnlyWhenAsked) {
    const TemporaryFolder folder;
    write(folder / "real/file", "text");
    fs::create_directory_symlink(folder / "real", folder / "link");
    EXPECT_FALSE(listFolder(folder / "link", false));
    EXPECT_EQ(listFolder(folder / "link", true).value().at(0).name, "file");
}

TEST(FolderListingTest, SaysWhyAFolderCannotBeListed) {
    const TemporaryFolder folder;
    write(folder / "file", "text");
    errno = 0;
    EXPECT_FALSE(listFolder(folder / "missing", false));
    EXPECT_EQ(errno, ENOENT);
    errno = 0;
    EXPECT_FALSE(listFolder(folder / "file", false));
    EXPECT_EQ(errno, ENOTDIR);
}

// The fields of a history: folder, created, modified, changed.
std::vector<bool> historyOf(const ChangeClock& clock, const fs::path& path) {
    const ItemHistory history = clock.historyOf(path).value();
    return {history.isDir, history.created, history.modified, history.changed};
}

TEST(FolderListingTest, AHistoryHoldsWhatHappenedSinceTheClockStarted) {
    const TemporaryFolder folder;
    for (const char* name : {"untouched", "written", "renamed", "permitted"}) {
        write(folder / name, "text");
    }
    const ChangeClock clock = ChangeClock::start();
    write(folder / "written", "more");
    fs::rename(folder / "renamed", folder / "new name");
    fs::permissions(folder / "permitted", fs::perms{0600});
    write(folder / "full", "text");
    write(folder / "empty", "");
    fs::create_directory(folder / "folder");

    using History = std::vector<bool>;
    EXPECT_EQ(historyOf(clock, folder / "untouched"), (History{false, false, false, false}));
    EXPECT_EQ(historyOf(clock, folder / "written"), (History{false, false, true, true}));
    EXPECT_EQ(historyOf(clock, folder / "new name"), (History{false, false, false, true}));
    EXPECT_EQ(historyOf(clock, folder / "permitted"), (History{false, false, false, true}));
    EXPECT_TRUE(historyOf(clock, folder / "folder")[0]);
    if (historyOf(clock, folder / "full")[1]) { // not every file system records creation
        EXPECT_EQ(historyOf(clock, folder / "full"), (History{false, true, true, true}));
        EXPECT_EQ(historyOf(clock, folder / "empty"), (History{false, true, false, true}));
    }
}

TEST(FolderListingTest, AHistoryIsOfTheLinkItselfAndOfNoMissingItem) {
    const TemporaryFolder folder;
    write(folder / "target", "text");
    fs::create_symlink(folder / "target", folder / "link");
    fs::create_symlink(folder / "nowhere", folder / "dangling");
    const ChangeClock clock = ChangeClock::start();
    write(folder / "target", "more");
    EXPECT_FALSE(clock.historyOf(folder / "link").value().changed);
    EXPECT_TRUE(clock.historyOf(folder / "dangling"));
    EXPECT_FALSE(clock.historyOf(folder / "missing"));
}

} // namespace
} // namespace quorvel
