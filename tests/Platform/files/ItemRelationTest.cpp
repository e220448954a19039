#include "Platform/files/ItemRelation.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class ItemRelationTest : public ::testing::Test {
protected:
    ItemRelationTest() {
        fs::create_directories(at("a/b/c"));
        fs::create_directories(at("ab"));
    }
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    TemporaryFolder folder_;
};

TEST_F(ItemRelationTest, IsTheSameInEverySpelling) {
    const ComparedItem place(at("a/b"));
    for (const char* path : {"a/b", "a/b/", "a/./b", "a/b/.", "a/b/c/..", "ab/../a/b"}) {
        EXPECT_EQ(place.relationTo(at(path)), Relation::same) << path;
    }
}

TEST_F(ItemRelationTest, IsAnAncestorOfItsContentsExistingOrNot) {
    const ComparedItem place(at("a"));
    for (const char* path : {"a/b", "a/b/c/", "a/none", "a/none/deeper", "ab/../a/b"}) {
        EXPECT_EQ(place.relationTo(at(path)), Relation::ancestor) << path;
    }
}

TEST_F(ItemRelationTest, IsUnrelatedToSiblingsAndParents) {
    const ComparedItem place(at("a/b"));
    for (const char* path : {"a", "ab", "ab/b", "none", "a/bc", "", "/"}) {
        EXPECT_EQ(place.relationTo(at(path)), Relation::unrelated) << path;
    }
    EXPECT_EQ(place.relationTo(""), Relation::unrelated);
}

TEST_F(ItemRelationTest, ResolvesLinksAtTheEndAndOnTheWay) {
    fs::create_directory_symlink(at("a/b"), at("link"));
    const ComparedItem place(at("a"));
    EXPECT_EQ(place.relationTo(at("link")), Relation::ancestor);
    EXPECT_EQ(place.relationTo(at("link/c")), Relation::ancestor);
    EXPECT_EQ(place.relationTo(at("link/none")), Relation::ancestor);
    EXPECT_EQ(ComparedItem(at("a/b")).relationTo(at("link")), Relation::same);
    EXPECT_EQ(ComparedItem(at("link")).relationTo(at("a/b/c")), Relation::ancestor);
}

TEST_F(ItemRelationTest, AnIdentityIsThatOfTheLinkNotOfItsTarget) {
    fs::create_directory_symlink(at("a/b"), at("link"));
    const ComparedItem place(at("link"), *identityOf(at("link")));
    EXPECT_EQ(place.relationTo(at("a/b")), Relation::unrelated);
    EXPECT_EQ(place.relationTo(at("link")), Relation::same);
    EXPECT_EQ(place.relationTo(at("link/c")), Relation::ancestor);
}

TEST_F(ItemRelationTest, APlaceThatDoesNotExistIsComparedByItsPath) {
    fs::create_directory_symlink(at("a"), at("link"));
    const ComparedItem place(at("link/new/x/.."));
    EXPECT_EQ(place.relationTo(at("a/new")), Relation::same);
    EXPECT_EQ(place.relationTo(at("a/new/deeper")), Relation::ancestor);
    EXPECT_EQ(place.relationTo(at("a/newer")), Relation::unrelated);
    EXPECT_EQ(place.relationTo(at("a")), Relation::unrelated);
}

} // namespace
} // namespace quorvel
