#include "tests/Platform/watching/Recording.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/Waiting.h"

#include <fcntl.h>
#include <fstream>
#include <gmock/gmock.h>
#include <sys/mman.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

void append(const fs::path& file, std::string_view text) {
    std::ofstream(file, std::ios::app) << text;
}

TEST(FSEventStreamTest, ANewFileIsCreatedAndModified) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    write(folder / "new", "text");
    recording.stop();
    EXPECT_EQ(recording.at(folder / "new"), (Change{folder / "new", false, true, true, false}));
    EXPECT_TRUE(recording.isComplete());
}

TEST(FSEventStreamTest, AnEmptyNewFileIsOnlyCreated) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    write(folder / "new", "");
    recording.stop();
    EXPECT_EQ(recording.at(folder / "new"), (Change{folder / "new", false, true, false, false}));
}

TEST(FSEventStreamTest, AnOldFileThatIsWrittenIsOnlyModified) {
    const TemporaryFolder folder;
    write(folder / "old", "text");
    Recording recording(folder.path());
    append(folder / "old", "more");
    recording.stop();
    EXPECT_EQ(recording.at(folder / "old"), (Change{folder / "old", false, false, true, false}));
}

TEST(FSEventStreamTest, WhatWasWrittenBeforeTheStartIsNotRecorded) {
    const TemporaryFolder folder;
    write(folder / "a" / "old", "text");
    Recording recording(folder.path());
    EXPECT_THAT(recording.stop(), IsEmpty());
}

TEST(FSEventStreamTest, AFileThatIsOnlyOpenedForWritingIsNotRecorded) {
    const TemporaryFolder folder;
    write(folder / "old", "text");
    Recording recording(folder.path());
    append(folder / "old", "");
    EXPECT_THAT(recording.stop(), IsEmpty());
}

TEST(FSEventStreamTest, AFileThatIsReadOrGivenPermissionsIsNotRecorded) {
    const TemporaryFolder folder;
    write(folder / "old", "text");
    Recording recording(folder.path());
    EXPECT_EQ(read(folder / "old"), "text");
    fs::permissions(folder / "old", fs::perms{0600});
    EXPECT_THAT(recording.stop(), IsEmpty());
}

TEST(FSEventStreamTest, AWriteThroughAMemoryMappingIsRecordedWhenTheFileIsClosed) {
    const TemporaryFolder folder;
    write(folder / "mapped", std::string(4096, 'x'));
    Recording recording(folder.path());
    const int file = ::open((folder / "mapped").c_str(), O_RDWR | O_CLOEXEC);
    void* memory = ::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    ASSERT_NE(memory, MAP_FAILED);
    static_cast<char*>(memory)[0] = 'y';
    ::msync(memory, 4096, MS_SYNC);
    ::munmap(memory, 4096);
    ::close(file);
    recording.stop();
    EXPECT_EQ(recording.at(folder / "mapped"),
              (Change{folder / "mapped", false, false, true, false}));
}

TEST(FSEventStreamTest, ADeletionIsNotRecorded) {
    const TemporaryFolder folder;
    write(folder / "file", "text");
    fs::create_directory(folder / "dir");
    Recording recording(folder.path());
    fs::remove(folder / "file");
    fs::remove(folder / "dir");
    EXPECT_THAT(recording.stop(), IsEmpty());
}

TEST(FSEventStreamTest, ARenameIsRecordedUnderBothNames) {
    const TemporaryFolder folder;
    write(folder / "old", "text");
    Recording recording(folder.path());
    fs::rename(folder / "old", folder / "new");
    recording.stop();
    EXPECT_EQ(recording.at(folder / "old"), (Change{folder / "old", false, false, false, true}));
    EXPECT_EQ(recording.at(folder / "new"), (Change{folder / "new", false, false, false, true}));
}

TEST(FSEventStreamTest, AFileReplacedTheSafeWayIsRecordedUnderItsName) {
    const TemporaryFolder folder;
    write(folder / "settings", "old");
    Recording recording(folder.path());
    write(folder / "settings.tmp", "new");
    fs::rename(folder / "settings.tmp", folder / "settings");
    recording.stop();
    EXPECT_TRUE(recording.at(folder / "settings")->renamed);
}

TEST(FSEventStreamTest, ANewFolderIsMarkedAsAFolder) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    fs::create_directory(folder / "dir");
    recording.stop();
    EXPECT_EQ(recording.at(folder / "dir"), (Change{folder / "dir", true, true, false, false}));
}

TEST(FSEventStreamTest, EverythingInFoldersMadeAtOnceIsRecorded) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    write(folder / "a/b/c/d/e/f/file", "text");
    recording.stop();
    for (const char* path : {"a", "a/b", "a/b/c", "a/b/c/d", "a/b/c/d/e", "a/b/c/d/e/f"}) {
        EXPECT_TRUE(recording.has(folder / path)) << path;
    }
    EXPECT_TRUE(recording.at(folder / "a/b/c/d/e/f/file")->created);
}

TEST(FSEventStreamTest, AFolderThatVanishesAtOnceIsHarmless) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    for (int turn = 0; turn < 300; ++turn) {
        write(folder / "a/b/file", "text");
        fs::remove_all(folder / "a");
    }
    write(folder / "after", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "a"));
    EXPECT_TRUE(recording.has(folder / "after"));
    EXPECT_TRUE(recording.isComplete());
}

TEST(FSEventStreamTest, AFolderThatIsMovedInIsRecordedWithAllItHolds) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    write(elsewhere / "dir/sub/file", "text");
    Recording recording(folder.path());
    fs::rename(elsewhere / "dir", folder / "dir");
    recording.stop();
    EXPECT_TRUE(recording.at(folder / "dir")->renamed);
    EXPECT_TRUE(recording.at(folder / "dir/sub")->isDir);
    EXPECT_TRUE(recording.at(folder / "dir/sub/file")->renamed);
}

TEST(FSEventStreamTest, AFolderThatIsMovedInIsRecordedFromThenOn) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    write(elsewhere / "dir/sub/file", "text");
    Recording recording(folder.path());
    fs::rename(elsewhere / "dir", folder / "dir");
    append(folder / "dir/sub/file", "more");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "dir/sub/file"));
}

TEST(FSEventStreamTest, AFolderThatIsRenamedIsRecordedUnderItsNewNameFromThenOn) {
    const TemporaryFolder folder;
    write(folder / "old/sub/file", "text");
    Recording recording(folder.path());
    append(folder / "old/sub/file", "before");
    fs::rename(folder / "old", folder / "new");
    append(folder / "new/sub/file", "after");
    write(folder / "new/sub/other", "text");
    recording.stop();
    EXPECT_TRUE(recording.at(folder / "old/sub/file")->modified);
    EXPECT_TRUE(recording.at(folder / "new/sub/file")->modified);
    EXPECT_TRUE(recording.at(folder / "new/sub/other")->created);
    EXPECT_FALSE(recording.has(folder / "old/sub/other"));
}

TEST(FSEventStreamTest, ARenameAloneReportsNothingInsideTheFolder) {
    const TemporaryFolder folder;
    write(folder / "old/sub/file", "text");
    Recording recording(folder.path());
    fs::rename(folder / "old", folder / "new");
    recording.stop();
    EXPECT_THAT(recording.paths(), ElementsAre(folder / "new", folder / "old"));
}

TEST(FSEventStreamTest, FoldersMadeAndRenamedAtOnceLoseNothing) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    for (int turn = 0; turn < 200; ++turn) {
        const std::string name = std::to_string(turn);
        fs::create_directories(folder / "made/inner/innermost");
        fs::rename(folder / "made", folder / name);
        write(folder / (name + "/inner/innermost/file"), "text");
    }
    recording.stop();
    for (int turn = 0; turn < 200; ++turn) {
        EXPECT_TRUE(recording.has(folder / (std::to_string(turn) + "/inner/innermost/file")));
    }
}

TEST(FSEventStreamTest, AFolderThatIsMovedOutIsNoLongerRecorded) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    write(folder / "dir/sub/file", "text");
    Recording recording(folder.path());
    fs::rename(folder / "dir", elsewhere / "dir");
    append(elsewhere / "dir/sub/file", "more");
    write(elsewhere / "dir/new", "text");
    recording.stop();
    EXPECT_THAT(recording.paths(), ElementsAre(folder / "dir"));
}

TEST(FSEventStreamTest, TwoFoldersThatChangePlacesKeepTheirOwnWrites) {
    const TemporaryFolder folder;
    write(folder / "a/file", "a");
    write(folder / "b/file", "b");
    Recording recording(folder.path());
    fs::rename(folder / "a", folder / "c");
    fs::rename(folder / "b", folder / "a");
    fs::rename(folder / "c", folder / "b");
    write(folder / "a/into-a", "text");
    write(folder / "b/into-b", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "a/into-a"));
    EXPECT_TRUE(recording.has(folder / "b/into-b"));
    EXPECT_FALSE(recording.has(folder / "a/into-b"));
    EXPECT_FALSE(recording.has(folder / "b/into-a"));
}

TEST(FSEventStreamTest, AFolderThatReplacesAnEmptyOneIsRecordedUnderItsName) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "empty");
    write(folder / "full/file", "text");
    Recording recording(folder.path());
    fs::rename(folder / "full", folder / "empty");
    write(folder / "empty/new", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "empty/new"));
    EXPECT_FALSE(recording.has(folder / "full/new"));
}

TEST(FSEventStreamTest, SymbolicLinksAreRecordedButNotFollowed) {
    const TemporaryFolder folder;
    const TemporaryFolder elsewhere;
    fs::create_directory_symlink(elsewhere.path(), folder / "old-link");
    Recording recording(folder.path());
    fs::create_directory_symlink(elsewhere.path(), folder / "new-link");
    fs::create_directory_symlink(folder.path(), folder / "circle");
    write(elsewhere / "file", "text");
    recording.stop();
    EXPECT_THAT(recording.paths(), ElementsAre(folder / "circle", folder / "new-link"));
    EXPECT_FALSE(recording.at(folder / "circle")->isDir);
}

TEST(FSEventStreamTest, NamesOfAnyBytesComeOutAsTheyAre) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    write(folder / "line\nbreak\x1b[31m/\xff\xfe", "text");
    recording.stop();
    EXPECT_TRUE(recording.has(folder / "line\nbreak\x1b[31m"));
    EXPECT_TRUE(recording.has(folder / "line\nbreak\x1b[31m/\xff\xfe"));
}

TEST(FSEventStreamTest, SpecialFilesAreRecordedWithoutBeingOpened) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    recording.stop();
    EXPECT_TRUE(recording.at(folder / "pipe")->created);
}

TEST(FSEventStreamTest, EventsArriveWhileItRuns) {
    const TemporaryFolder folder;
    std::atomic<int> calls{0};
    FSEventStream::Options options;
    options.paths = {folder.path()};
    const auto stream =
        FSEventStream::start(options, [&](const FSEventBatch& /*batch*/) { ++calls; });
    fs::create_directory(folder / "first");
    EXPECT_TRUE(waitUntil([&] { return calls == 1; }));
    fs::create_directory(folder / "second");
    EXPECT_TRUE(waitUntil([&] { return calls == 2; }));
    stream->stop();
    fs::create_directory(folder / "third");
    stream->stop();
    EXPECT_EQ(calls, 2);
}

} // namespace
} // namespace quorvel
