#include "Platform/files/ItemIdentity.h"

#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class ItemIdentityTest : public ::testing::Test {
protected:
    ItemIdentityTest() {
        fs::create_directories(at("a/b/c"));
        fs::create_directories(at("ab"));
    }
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    TemporaryFolder folder_;
};

TEST_F(ItemIdentityTest, IsTheSameHoweverThePathIsWritten) {
    const Place place(at("a/b"));
    for (const char* path : {"a/b", "a/b/", "a/./b", "a/b/.", "a/b/c/..", "ab/../a/b"}) {
        EXPECT_EQ(place.towards(at(path)), Standing::same) << path;
    }
}

TEST_F(ItemIdentityTest, IsAboveWhatLiesInItThereOrNot) {
    const Place place(at("a"));
    for (const char* path : {"a/b", "a/b/c/", "a/none", "a/none/deeper", "ab/../a/b"}) {
        EXPECT_EQ(place.towards(at(path)), Standing::above) << path;
    }
}

TEST_F(ItemIdentityTest, IsApartFromWhatLiesBesideOrAbove) {
    const Place place(at("a/b"));
    for (const char* path : {"a", "ab", "ab/b", "none", "a/bc", "", "/"}) {
        EXPECT_EQ(place.towards(at(path)), Standing::apart) << path;
    }
    EXPECT_EQ(place.towards(""), Standing::apart);
}

TEST_F(ItemIdentityTest, SeesThroughLinksToTheTargetAndOnTheWay) {
    fs::create_directory_symlink(at("a/b"), at("link"));
    const Place place(at("a"));
    EXPECT_EQ(place.towards(at("link")), Standing::above);
    EXPECT_EQ(place.towards(at("link/c")), Standing::above);
    EXPECT_EQ(place.towards(at("link/none")), Standing::above);
    EXPECT_EQ(Place(at("a/b")).towards(at("link")), Standing::same);
    EXPECT_EQ(Place(at("link")).towards(at("a/b/c")), Standing::above);
}

TEST_F(ItemIdentityTest, AnIdentityStandsForTheItemAloneNotForWhatALinkLeadsTo) {
    fs::create_directory_symlink(at("a/b"), at("link"));
    const Place place(at("link"), *identityOfItself(at("link")));
    EXPECT_EQ(place.towards(at("a/b")), Standing::apart);
    EXPECT_EQ(place.towards(at("link")), Standing::same);
    EXPECT_EQ(place.towards(at("link/c")), Standing::above);
}

TEST_F(ItemIdentityTest, APlaceThatIsNotThereYetIsComparedByItsPath) {
    fs::create_directory_symlink(at("a"), at("link"));
    const Place place(at("link/new/x/.."));
    EXPECT_EQ(place.towards(at("a/new")), Standing::same);
    EXPECT_EQ(place.towards(at("a/new/deeper")), Standing::above);
    EXPECT_EQ(place.towards(at("a/newer")), Standing::apart);
    EXPECT_EQ(place.towards(at("a")), Standing::apart);
}

} // namespace
} // namespace quorvel
