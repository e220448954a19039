#include "Platform/files/FileSystem.h"

#include "Platform/files/FileHandle.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/Folder.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

class FileSystemTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    [[nodiscard]] fs::path fifo() const {
        ::mkfifo(at("fifo").c_str(), 0600);
        return at("fifo");
    }

    [[nodiscard]] fs::path linkToItself() const {
        fs::create_symlink(at("loop"), at("loop"));
        return at("loop");
    }

    [[nodiscard]] fs::path nulBehind(const fs::path& path) const {
        return path.native() + "\0behind"s;
    }

    TemporaryFolder folder_;
};

std::errc errorOf(const std::function<void()>& step) {
    try {
        step();
    } catch (const PlatformError& error) {
        return static_cast<std::errc>(error.code().value());
    }
    return {};
}

TEST_F(FileSystemTest, ADanglingLinkIsALinkButNotAnItem) {
    fs::create_symlink("nowhere", at("link"));
    EXPECT_FALSE(itemExists(at("link")));
    EXPECT_TRUE(itemOrLinkExists(at("link")));
    EXPECT_TRUE(isSymbolicLink(at("link")));
}

TEST_F(FileSystemTest, ALinkToItselfIsALinkButNotAnItem) {
    EXPECT_FALSE(itemExists(linkToItself()));
    EXPECT_TRUE(isSymbolicLink(at("loop")));
}

TEST_F(FileSystemTest, FilesAndFoldersExistAndAreNotLinks) {
    write(at("file"), "");
    EXPECT_TRUE(itemExists(at("file")));
    EXPECT_TRUE(itemExists(folder_.path()));
    EXPECT_FALSE(isSymbolicLink(at("file")));
    EXPECT_FALSE(itemExists(at("none")));
}

TEST_F(FileSystemTest, APathWithANulNamesNothing) {
    write(at("file"), "x");
    const fs::path path = nulBehind(at("file"));
    EXPECT_FALSE(itemExists(path));
    EXPECT_FALSE(itemOrLinkExists(path));
    EXPECT_FALSE(isSymbolicLink(path));
    EXPECT_FALSE(isSameItem(path, at("file")));
    EXPECT_FALSE(isExecutableFile(path));
    EXPECT_FALSE(directoryEntries(nulBehind(folder_.path())));
    EXPECT_FALSE(readFile(path, 10));
    EXPECT_FALSE(openForAppending(path));
    EXPECT_EQ(errorOf([&] { writeFile(path, "y"); }), std::errc::invalid_argument);
    EXPECT_EQ(errorOf([&] { createDirectories(nulBehind(at("new"))); }),
              std::errc::invalid_argument);
    EXPECT_EQ(read(at("file")), "x");
    EXPECT_FALSE(itemExists(at("new")));
}

TEST_F(FileSystemTest, TheSameItemIsRecognizedThroughLinks) {
    fs::create_directory(at("real"));
    fs::create_directory_symlink(at("real"), at("link"));
    EXPECT_TRUE(isSameItem(at("real"), at("link")));
    EXPECT_TRUE(isSameItem(at("real/../link/."), at("real")));
    EXPECT_FALSE(isSameItem(at("real"), folder_.path()));
    EXPECT_FALSE(isSameItem(at("none"), at("none")));
}

TEST_F(FileSystemTest, OnlyAFileWithTheExecutePermissionIsExecutable) {
    write(at("file"), "");
    EXPECT_FALSE(isExecutableFile(at("file")));
    makeExecutable(at("file"));
    fs::create_symlink(at("file"), at("link"));
    EXPECT_TRUE(isExecutableFile(at("file")));
    EXPECT_TRUE(isExecutableFile(at("link")));
    EXPECT_FALSE(isExecutableFile(folder_.path()));
    EXPECT_FALSE(isExecutableFile(at("none")));
}

TEST_F(FileSystemTest, AFoldersEntriesIncludeHiddenOnes) {
    write(at(".hidden"), "");
    write(at("line\nbreak"), "");
    write(at("no \xFF text"), "");
    EXPECT_THAT(directoryEntries(folder_.path()).value(),
                ::testing::UnorderedElementsAre(".hidden", "line\nbreak", "no \xFF text"));
}

TEST_F(FileSystemTest, AnOpenFolderListsAndReadsItsContents) {
    write(at("folder/deep/file"), "x");
    write(at("folder/other"), "yy");
    std::optional<Folder> folder = Folder::open(at("folder"));
    ASSERT_TRUE(folder);
    for (int time = 0; time < 2; ++time) {
        EXPECT_THAT(folder->entries(), ::testing::UnorderedElementsAre("deep", "other"));
    }
    std::string bytes = "something longer from before";
    EXPECT_TRUE(folder->read("deep/file", 10, bytes));
    EXPECT_EQ(bytes, "x");
    EXPECT_TRUE(folder->read("other", 2, bytes));
    EXPECT_EQ(bytes, "yy");
    EXPECT_FALSE(folder->read("other", 1, bytes));
    EXPECT_FALSE(folder->read("none", 10, bytes));
    EXPECT_FALSE(folder->read("deep", 10, bytes));
    EXPECT_FALSE(folder->read("other\0behind"s, 10, bytes));
}

TEST_F(FileSystemTest, AnOpenFolderStaysTheSameWhenItIsMoved) {
    write(at("folder/file"), "x");
    const std::optional<Folder> folder = Folder::open(at("folder"));
    fs::rename(at("folder"), at("moved"));
    std::string bytes;
    EXPECT_TRUE(folder->read("file", 10, bytes));
    EXPECT_EQ(bytes, "x");
}

TEST_F(FileSystemTest, OnlyAFolderThatCanBeReadIsOpened) {
    write(at("file"), "");
    EXPECT_FALSE(Folder::open(at("file")));
    EXPECT_FALSE(Folder::open(at("none")));
    EXPECT_FALSE(Folder::open(fifo()));
    EXPECT_FALSE(Folder::open(nulBehind(folder_.path())));
}

TEST_F(FileSystemTest, AFileHasNoEntries) {
    write(at("file"), "");
    EXPECT_FALSE(directoryEntries(at("file")));
    EXPECT_FALSE(directoryEntries(at("none")));
    EXPECT_FALSE(directoryEntries(fifo()));
    EXPECT_EQ(directoryEntries(fs::path("")), std::nullopt);
}

TEST_F(FileSystemTest, AnUnreadableFolderHasNoEntries) {
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        fs::create_directory(at("closed"));
        fs::permissions(at("closed"), fs::perms::none);
        return !directoryEntries(at("closed"));
    }));
}

TEST_F(FileSystemTest, AFileIsReadCompletely) {
    const std::string bytes = "a\0b\n"s + std::string(100000, 'x');
    write(at("file"), bytes);
    EXPECT_EQ(readFile(at("file"), bytes.size()), bytes);
}

TEST_F(FileSystemTest, AnEmptyFileIsReadAsEmpty) {
    write(at("file"), "");
    EXPECT_EQ(readFile(at("file"), 10), "");
}

TEST_F(FileSystemTest, AFileOverTheLimitIsNotRead) {
    write(at("file"), "12345");
    EXPECT_EQ(readFile(at("file"), 5), "12345");
    EXPECT_EQ(readFile(at("file"), 4), std::nullopt);
}

TEST_F(FileSystemTest, AFileWithoutASizeIsReadToItsEndOrTheLimit) {
    EXPECT_TRUE(readFile("/proc/self/status", 100000)->starts_with("Name:"));
    EXPECT_EQ(readFile("/proc/self/status", 10), std::nullopt);
}

TEST_F(FileSystemTest, ReadingNeverBlocksOnASpecialFile) {
    EXPECT_FALSE(readFile(fifo(), 10));
    EXPECT_FALSE(readFile("/dev/zero", 10));
    EXPECT_FALSE(readFile("/dev/tty", 10));
    EXPECT_FALSE(readFile(folder_.path(), 10));
    EXPECT_FALSE(readFile(linkToItself(), 10));
    EXPECT_FALSE(readFile(at("none"), 10));
}

TEST_F(FileSystemTest, WritingCreatesTheFile) {
    writeFile(at("new"), "x");
    EXPECT_EQ(read(at("new")), "x");
}

TEST_F(FileSystemTest, WritingToAnImpossiblePathIsAnError) {
    EXPECT_NE(errorOf([&] { writeFile(at("none/file"), "x"); }), std::errc{});
    EXPECT_NE(errorOf([&] { writeFile(folder_.path(), "x"); }), std::errc{});
    EXPECT_NE(errorOf([&] { writeFile(fifo(), "x"); }), std::errc{});
    EXPECT_NE(errorOf([&] { writeFile(linkToItself(), "x"); }), std::errc{});
    EXPECT_NE(errorOf([&] { writeFile(at(std::string(300, 'n')), "x"); }), std::errc{});
}

TEST_F(FileSystemTest, AFullDiskIsAnError) {
    EXPECT_NE(errorOf([] { writeFile("/dev/full", "x"); }), std::errc{});
}

TEST_F(FileSystemTest, FoldersAreCreatedWithTheirParents) {
    createDirectories(at("a/b/c"));
    createDirectories(at("a/b/d//"));
    createDirectories(at("a/b/c"));
    EXPECT_TRUE(fs::is_directory(at("a/b/c")));
    EXPECT_TRUE(fs::is_directory(at("a/b/d")));
}

TEST_F(FileSystemTest, ALinkToAFolderCountsAsTheFolder) {
    fs::create_directory(at("real"));
    fs::create_directory_symlink(at("real"), at("link"));
    createDirectories(at("link"));
    createDirectories(at("link/below"));
    EXPECT_TRUE(fs::is_directory(at("real/below")));
}

TEST_F(FileSystemTest, AFolderThatCantBeCreatedIsAnError) {
    write(at("file"), "");
    EXPECT_NE(errorOf([&] { createDirectories(at("file")); }), std::errc{});
    EXPECT_NE(errorOf([&] { createDirectories(at("file/below")); }), std::errc{});
    EXPECT_NE(errorOf([&] { createDirectories(linkToItself()); }), std::errc{});
    EXPECT_NE(errorOf([] { createDirectories(""); }), std::errc{});
    EXPECT_EQ(errorOf([&] { createDirectories(at(std::string(300, 'n'))); }),
              std::errc::filename_too_long);
}

TEST_F(FileSystemTest, AppendingKeepsTheContents) {
    write(at("log"), "before\n");
    ASSERT_TRUE(openForAppending(at("log"))->write("after\n"));
    EXPECT_EQ(read(at("log")), "before\nafter\n");
}

TEST_F(FileSystemTest, AppendingCreatesTheFile) {
    ASSERT_TRUE(openForAppending(at("log")));
    EXPECT_TRUE(itemExists(at("log")));
}

TEST_F(FileSystemTest, AppendingNeverBlocksOnASpecialFile) {
    EXPECT_FALSE(openForAppending(fifo()));
    const FileHandle reader(::open(fifo().c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    EXPECT_FALSE(openForAppending(fifo())) << "not even if another process reads it";
    EXPECT_FALSE(openForAppending(folder_.path()));
    EXPECT_FALSE(openForAppending(at("none/log")));
    EXPECT_FALSE(openForAppending(linkToItself()));
    fs::create_symlink("/dev/null", at("to-null"));
    const auto device = openForAppending(at("to-null"));
    ASSERT_TRUE(device) << "an unwanted log";
    EXPECT_TRUE(device->write("bytes"));
    EXPECT_EQ(::fcntl(device->descriptor(), F_GETFL) & O_NONBLOCK, 0);
}

} // namespace
} // namespace quorvel
