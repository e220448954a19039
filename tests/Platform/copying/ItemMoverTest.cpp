#include "Platform/copying/ItemMover.h"

#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/TemporaryHome.h"

#include <cerrno>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
namespace fs = std::filesystem;

ExclusiveRename answering(int error) {
    return [error](const fs::path&, const fs::path&) {
        errno = error;
        return -1;
    };
}

class ItemMoverTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    // Moves a folder that contains a file and a link.
    void expectAFolderIsMoved(ItemMover mover) const {
        write(at("a/deep/file"), "x");
        fs::create_symlink("nowhere", at("a/link"));
        const auto before = treeOf(at("a"));
        mover.move(at("a"), at("b"));
        EXPECT_EQ(treeOf(at("b")), before);
        EXPECT_FALSE(itemOrLinkExists(at("a")));
    }

    // Tries to move a file to an occupied path.
    void expectNothingIsReplaced(ItemMover mover) const {
        write(at("a"), "new");
        write(at("file"), "old");
        fs::create_directory(at("empty folder"));
        fs::create_symlink("nowhere", at("dangling"));
        for (const char* taken : {"file", "empty folder", "dangling"}) {
            const auto before = treeOf(folder_.path());
            try {
                mover.move(at("a"), at(taken));
                ADD_FAILURE() << taken << " was replaced";
            } catch (const PlatformError& error) {
                EXPECT_EQ(error.code(), std::errc::file_exists) << taken;
            }
            EXPECT_EQ(treeOf(folder_.path()), before) << taken;
        }
    }

    TemporaryFolder folder_;
};

TEST_F(ItemMoverTest, MovesAFolderWithEverythingInIt) {
    expectAFolderIsMoved(ItemMover());
}

TEST_F(ItemMoverTest, ReplacesNothingNotEvenADanglingLink) {
    expectNothingIsReplaced(ItemMover());
}

// The result on network file systems.
class ItemMoverTestWithoutExclusiveRenaming : public ItemMoverTest,
                                              public ::testing::WithParamInterface<int> {};

TEST_P(ItemMoverTestWithoutExclusiveRenaming, StillMoves) {
    expectAFolderIsMoved(ItemMover(answering(GetParam())));
}

TEST_P(ItemMoverTestWithoutExclusiveRenaming, ReplacesNothingNotEvenADanglingLink) {
    expectNothingIsReplaced(ItemMover(answering(GetParam())));
}

INSTANTIATE_TEST_SUITE_P(ItemMoverTest, ItemMoverTestWithoutExclusiveRenaming,
                         ::testing::Values(EINVAL, ENOSYS, ENOTSUP, EOPNOTSUPP));

TEST_F(ItemMoverTest, OtherErrorsOfTheRenameAreNotWorkedAround) {
    write(at("a"), "x");
    EXPECT_THROW(ItemMover(answering(EACCES)).move(at("a"), at("b")), PlatformError);
    EXPECT_EQ(treeOf(folder_.path()), (std::map<std::string, std::string>{{"a", "x"}}));
}

TEST_F(ItemMoverTest, MovingAFolderIntoItselfIsAnErrorThatLosesNothing) {
    write(at("a/file"), "x");
    EXPECT_THROW(ItemMover().move(at("a"), at("a/b")), PlatformError);
    EXPECT_EQ(read(at("a/file")), "x");
}

TEST_F(ItemMoverTest, AMissingItemIsAnError) {
    EXPECT_THROW(ItemMover().move(at("none"), at("b")), PlatformError);
}

TEST_F(ItemMoverTest, APathWithANulIsRefused) {
    write(at("a"), "x");
    EXPECT_THROW(ItemMover().move(at("a").native() + "\0z"s, at("b")), PlatformError);
    EXPECT_THROW(ItemMover().move(at("a"), at("b").native() + "\0z"s), PlatformError);
    EXPECT_EQ(treeOf(folder_.path()), (std::map<std::string, std::string>{{"a", "x"}}));
}

} // namespace
} // namespace quorvel
