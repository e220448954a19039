#include "Platform/watching/DataPlaces.h"

#include <algorithm>
#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;

std::vector<std::string> foldersOf(const std::vector<DataPlace>& places, DataPlace::Kind kind) {
    std::vector<std::string> folders;
    for (const DataPlace& place : places) {
        if (place.kind == kind) {
            folders.push_back(place.folder);
        }
    }
    return folders;
}

TEST(DataPlacesTest, AreBelowTheHomeWhereTheSessionSaysNothing) {
    const auto places = dataPlaces("/home/anna", {{"XDG_CONFIG_HOME", ""}, {"XDG_DATA_HOME", "x"}});
    EXPECT_THAT(foldersOf(places, DataPlace::Kind::data),
                UnorderedElementsAre("/home/anna/.config", "/home/anna/.local/share",
                                     "/home/anna/.local/state", "/home/anna/.cache", "/home/anna"));
    EXPECT_THAT(foldersOf(places, DataPlace::Kind::settings),
                ElementsAre("/home/anna/.config/dconf"));
    EXPECT_THAT(foldersOf(places, DataPlace::Kind::containers),
                UnorderedElementsAre("/home/anna/.var/app", "/home/anna/snap"));
}

TEST(DataPlacesTest, AreWhereTheSessionSays) {
    const auto places = dataPlaces("/home/anna", {{"XDG_CONFIG_HOME", "/c/"},
                                                  {"XDG_DATA_HOME", "/d"},
                                                  {"XDG_STATE_HOME", "/s"},
                                                  {"XDG_CACHE_HOME", "/k"}});
    EXPECT_THAT(foldersOf(places, DataPlace::Kind::data),
                UnorderedElementsAre("/c", "/d", "/s", "/k", "/home/anna"));
    EXPECT_THAT(foldersOf(places, DataPlace::Kind::settings), ElementsAre("/c/dconf"));
}

TEST(DataPlacesTest, TheMostSpecificComesFirst) {
    const auto places = dataPlaces("/home/anna", {});
    for (auto place = places.begin(); place != places.end(); ++place) {
        EXPECT_TRUE(std::none_of(std::next(place), places.end(), [&](const DataPlace& later) {
            return later.folder.starts_with(place->folder + "/");
        })) << place->folder;
    }
}

TEST(DataPlacesTest, OnlyHiddenItemsOfTheHomeItselfAreData) {
    for (const DataPlace& place : dataPlaces("/home/anna", {})) {
        EXPECT_EQ(place.hiddenOnly, place.folder == "/home/anna");
        EXPECT_EQ(place.isShared, place.folder == "/home/anna/.config/dconf");
    }
}

} // namespace
} // namespace quorvel
