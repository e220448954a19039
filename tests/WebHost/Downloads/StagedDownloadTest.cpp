#include "WebHost/Downloads/StagedDownload.h"

#include "Base/RandomUuid.h"
#include "Platform/files/PlatformError.h"
#include "tests/WebHost/Downloads/HostileNames.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <set>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
namespace fs = std::filesystem;

std::set<std::string> namesIn(const fs::path& folder) {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

mode_t modeOf(const fs::path& path) {
    struct stat facts {};
    return ::lstat(path.c_str(), &facts) == 0 ? facts.st_mode & 07777U : 0;
}

TEST(StagedDownloadTest, IsPublishedWhenComplete) {
    const TemporaryFolder folder;
    const fs::path downloads = folder / "Downloads";
    {
        StagedDownload download(downloads, "mark", "a.txt");
        EXPECT_EQ(modeOf(download.file().parent_path()), 0700U);
        EXPECT_EQ(download.file().parent_path().parent_path(), downloads);
        write(download.file(), "text");
        fs::permissions(download.file(), fs::perms{0777});
        EXPECT_EQ(download.publish(), downloads / "a.txt");
    }
    EXPECT_THAT(namesIn(downloads), ElementsAre("a.txt"));
    EXPECT_EQ(read(downloads / "a.txt"), "text");
    EXPECT_EQ(modeOf(downloads / "a.txt"), 0600U) << "never executable";
}

TEST(StagedDownloadTest, ReplacesNothing) {
    const TemporaryFolder folder;
    write(folder / "a.txt", "precious");
    fs::create_symlink("/nowhere", folder / "a (2).txt");
    fs::create_directory(folder / "a (3).txt");
    StagedDownload download(folder.path(), "mark", "a.txt");
    write(download.file(), "new");
    EXPECT_EQ(download.publish(), folder / "a (4).txt");
    EXPECT_EQ(read(folder / "a.txt"), "precious");
    EXPECT_EQ(fs::read_symlink(folder / "a (2).txt"), "/nowhere");
    EXPECT_EQ(read(folder / "a (4).txt"), "new");
}

TEST(StagedDownloadTest, HostileNamesStayInTheFolder) {
    const TemporaryFolder folder;
    const fs::path downloads = folder / "d";
    std::set<std::string> expected;
    for (const auto& [hostile, safe] : hostileNames()) {
        StagedDownload download(downloads, "mark", hostile);
        write(download.file(), hostile);
        const fs::path published = download.publish();
        EXPECT_EQ(published.parent_path(), downloads) << hostile;
        EXPECT_TRUE(expected.insert(published.filename().string()).second) << hostile;
        EXPECT_EQ(read(published), hostile);
    }
    EXPECT_EQ(namesIn(downloads), expected);
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("d"));
}

TEST(StagedDownloadTest, WhatIsUnfinishedIsRemoved) {
    const TemporaryFolder folder;
    write(folder / "a.txt", "precious");
    {
        const StagedDownload download(folder.path(), "mark", "a.txt");
        write(download.file(), "half");
        write(download.file().string() + ".wkdownload", "half");
    }
    EXPECT_THAT(namesIn(folder.path()), ElementsAre("a.txt"));
}

TEST(StagedDownloadTest, ALinkIsNotPublished) {
    const TemporaryFolder folder;
    StagedDownload download(folder.path(), "mark", "a.txt");
    EXPECT_THROW((void)download.publish(), PlatformError) << "nothing was downloaded";
    fs::create_symlink("/etc/passwd", download.file());
    EXPECT_THROW((void)download.publish(), PlatformError);
    EXPECT_FALSE(fs::exists(fs::symlink_status(folder / "a.txt")));
}

TEST(StagedDownloadTest, OnlyItsOwnEmptyLeftoversAreRemoved) {
    const TemporaryFolder folder;
    const std::string id = randomUuid();
    for (const std::string& name :
         {".quorvel-mark-" + id, ".quorvel-other-" + id, ".quorvel-mark-x" + id}) {
        fs::create_directory(folder / name);
    }
    const std::string filled = ".quorvel-mark-" + randomUuid();
    write(folder / filled / "file", "half");
    write(folder / (".quorvel-mark-" + randomUuid()), "a file");
    StagedDownload::removeLeftovers(folder.path(), "mark");
    EXPECT_THAT(namesIn(folder.path()), ::testing::SizeIs(4));
    EXPECT_FALSE(fs::exists(folder / (".quorvel-mark-" + id)));
    EXPECT_TRUE(fs::exists(folder / filled / "file"));
    StagedDownload::removeLeftovers(folder / "missing", "mark");
}

} // namespace
} // namespace quorvel
