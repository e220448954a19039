#include "Platform/files/FolderWalk.h"

#include "tests/support/TemporaryHome.h"

#include <cerrno>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::UnorderedElementsAre;
namespace fs = std::filesystem;

class FolderWalkTest : public ::testing::Test {
protected:
    [[nodiscard]] FileHandle opened() const {
        return FileHandle(::open((folder_ / "root").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    }

    // Creates a chain of `depth` folders named "d" below the root. Returns the path of the last.
    fs::path makeChain(int depth) const {
        fs::path path = folder_ / "root";
        for (int level = 0; level < depth; ++level) {
            path /= "d";
        }
        fs::create_directories(path);
        return path;
    }

    static std::string mark(FolderWalk::Kind kind) {
        switch (kind) {
        case FolderWalk::Kind::item:
            return "item ";
        case FolderWalk::Kind::folderLeft:
            return "left ";
        case FolderWalk::Kind::unreadable:
            return "unreadable ";
        case FolderWalk::Kind::anotherMount:
            break;
        }
        return "mount ";
    }

    TemporaryFolder folder_;
};

TEST_F(FolderWalkTest, VisitsContentsBeforeTheFolderAndFollowsNoLink) {
    write(folder_ / "root/a/b/file", "x");
    write(folder_ / "other/file", "x");
    fs::create_directory_symlink(folder_ / "other", folder_ / "root/a/link");
    const FileHandle root = opened();
    FolderWalk walk(root.descriptor(), *mountOf(root.descriptor()));
    std::vector<std::string> steps;
    while (const auto step = walk.next()) {
        steps.push_back(mark(step->kind) + walk.path());
        EXPECT_EQ(::faccessat(step->folder, step->name, F_OK, AT_SYMLINK_NOFOLLOW), 0);
    }
    EXPECT_THAT(steps, UnorderedElementsAre("item a/b/file", "left a/b", "item a/link", "left a"));
    EXPECT_EQ(steps.back(), "left a");
}

TEST_F(FolderWalkTest, AnEmptyFolderHasNoSteps) {
    fs::create_directory(folder_ / "root");
    const FileHandle root = opened();
    FolderWalk walk(root.descriptor(), *mountOf(root.descriptor()));
    EXPECT_FALSE(walk.next());
    EXPECT_FALSE(walk.next());
}

TEST_F(FolderWalkTest, KeepsFewFoldersOpenInADeepTree) {
    makeChain(400);
    // The limit applies to the process, so a child sets it.
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit few{64, 64};
        ::setrlimit(RLIMIT_NOFILE, &few);
        const FileHandle root = opened();
        FolderWalk walk(root.descriptor(), *mountOf(root.descriptor()));
        int left = 0;
        while (const auto step = walk.next()) {
            left += step->kind == FolderWalk::Kind::folderLeft ? 1 : 0;
        }
        std::_Exit(left == 400 ? 0 : 1);
    }
    int status = 1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(FolderWalkTest, ReportsEveryFolderThatItCantListForLackOfDescriptors) {
    write(makeChain(5) / "file", "x");
    const pid_t child = ::fork();
    if (child == 0) {
        const FileHandle root = opened();
        const Mount mount = *mountOf(root.descriptor());
        const auto fits = [&](rlim_t more) {
            const rlimit few{static_cast<rlim_t>(root.descriptor()) + 1 + more, 64};
            ::setrlimit(RLIMIT_NOFILE, &few);
            FolderWalk walk(root.descriptor(), mount);
            bool file = false;
            bool reported = false;
            while (const auto step = walk.next()) {
                file = file || step->kind == FolderWalk::Kind::item;
                reported = reported ||
                           (step->kind == FolderWalk::Kind::unreadable && step->error == EMFILE);
            }
            return file != reported;
        };
        for (rlim_t more = 0; more < 12; ++more) {
            if (!fits(more)) {
                std::_Exit(1 + static_cast<int>(more));
            }
        }
        std::_Exit(0);
    }
    int status = 1;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
}

TEST_F(FolderWalkTest, DoesNotLeaveThroughAFolderThatWasMoved) {
    write(makeChain(100) / "file", "x");
    write(folder_ / "elsewhere/precious", "x");
    const FileHandle root = opened();
    FolderWalk walk(root.descriptor(), *mountOf(root.descriptor()));
    ASSERT_TRUE(walk.next());
    // All but the last few dozen folders are closed at this point.
    fs::rename(folder_ / "root/d/d/d", folder_ / "elsewhere/d");
    const auto elsewhere = identityOf(folder_ / "elsewhere");
    ASSERT_TRUE(elsewhere);
    int unreadable = 0;
    while (const auto step = walk.next()) {
        struct stat status {};
        if (step->folder >= 0) {
            ASSERT_EQ(::fstat(step->folder, &status), 0);
            EXPECT_NE(identityOf(status), *elsewhere) << walk.path();
        }
        if (step->kind == FolderWalk::Kind::unreadable) {
            ++unreadable;
            EXPECT_EQ(step->error, ESTALE);
            EXPECT_EQ(step->folder, -1);
        }
    }
    EXPECT_GE(unreadable, 1);
}

} // namespace
} // namespace quorvel
