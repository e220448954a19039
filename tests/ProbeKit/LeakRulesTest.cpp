#include "ProbeKit/LeakRules.h"

#include "LaunchKit/AppBundle.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;

const std::vector<DataPlace>& places() {
    using enum DataPlace::Kind;
    static const std::vector<DataPlace> all{
        {.folder = "/h/notes/.config/dconf", .kind = settings, .isShared = true},
        {.folder = "/h/notes/.var/app", .kind = containers},
        {.folder = "/h/notes/.config"},
        {.folder = "/h/notes", .levels = 2, .hiddenOnly = true},
    };
    return all;
}

// Of an entry with the identifier "org.example.Notes"; the user's home is "/h/notes".
LeakRules rulesOfEntry() {
    AppBundle app;
    app.bundleId = "org.example.Notes.desktop";
    app.desktop.emplace();
    return {app, "/L", places()};
}

LeakBucket bucketOf(const std::string& path) {
    return rulesOfEntry().bucketOf(path, "/tmp/home");
}

TEST(LeakRulesTest, WhatTheThrowAwayHomeContainsIsCaptured) {
    EXPECT_EQ(bucketOf("/tmp/home/.config/notes"), LeakBucket::captured);
    EXPECT_EQ(bucketOf("/tmp/home/.config/dconf/user"), LeakBucket::captured);
    EXPECT_EQ(bucketOf("/tmp/other/notes"), LeakBucket::irrelevant);
}

TEST(LeakRulesTest, WhatNamesTheAppInAPlaceIsALeakOfItsKind) {
    EXPECT_EQ(bucketOf("/h/notes/.config/notesrc"), LeakBucket::dataLeak);
    EXPECT_EQ(bucketOf("/h/notes/.config/a/b/Notes/c"), LeakBucket::dataLeak);
    EXPECT_EQ(bucketOf("/h/notes/.notes/c"), LeakBucket::dataLeak);
    EXPECT_EQ(bucketOf("/h/notes/.var/app/org.example.Notes/c"), LeakBucket::containerLeak);
}

TEST(LeakRulesTest, WhatOtherProgramsWriteIsIrrelevant) {
    EXPECT_EQ(bucketOf("/h/notes/.config/other/c"), LeakBucket::irrelevant)
        << "the home's own name is not the app's";
    EXPECT_EQ(bucketOf("/h/notes/.other"), LeakBucket::irrelevant);
    EXPECT_EQ(bucketOf("/h/notes/.var/app/org.example.Other/c"), LeakBucket::irrelevant);
}

TEST(LeakRulesTest, OnlyHiddenItemsOfTheHomeCount) {
    EXPECT_EQ(bucketOf("/h/notes/Documents/notes"), LeakBucket::irrelevant);
    EXPECT_EQ(bucketOf("/h/notes/notes"), LeakBucket::irrelevant);
    EXPECT_EQ(bucketOf("/h/notes/.notes"), LeakBucket::dataLeak);
}

TEST(LeakRulesTest, SharedSettingsCountWithoutAName) {
    EXPECT_EQ(bucketOf("/h/notes/.config/dconf/user"), LeakBucket::prefsLeak);
    EXPECT_EQ(bucketOf("/h/notes/.config/dconf2/user"), LeakBucket::irrelevant);
}

TEST(LeakRulesTest, SharedSettingsCountOnlyIfOneOfTheAppsHasChanged) {
    const std::string database = "/h/notes/.config/dconf/user";
    const Settings before{{"/org/example/notes/size", "1"}, {"/org/other/size", "1"}};
    const auto leaksAfter = [&](const std::optional<Settings>& first,
                                const std::optional<Settings>& last) {
        LeakBuckets buckets{
            {LeakBucket::prefsLeak, {database, "/h/notes/.config/dconf/user.X", database}},
            {LeakBucket::irrelevant, {"/x"}}};
        rulesOfEntry().setOthersSettingsAside(first, last, buckets);
        const std::size_t irrelevant = buckets[LeakBucket::irrelevant].size();
        EXPECT_EQ(irrelevant, buckets.contains(LeakBucket::prefsLeak) ? 1U : 4U);
        return buckets.contains(LeakBucket::prefsLeak);
    };
    Settings after = before;
    EXPECT_FALSE(leaksAfter(before, after));
    after["/org/other/size"] = "2";
    after["/org/other/new"] = "1";
    EXPECT_FALSE(leaksAfter(before, after)) << "another program's";
    after["/org/example/notes/size"] = "2";
    EXPECT_TRUE(leaksAfter(before, after));
    after.erase("/org/example/notes/size");
    EXPECT_TRUE(leaksAfter(before, after));
    EXPECT_TRUE(leaksAfter(Settings(), Settings{{"/org/example/notes/new", "1"}}));
    EXPECT_TRUE(leaksAfter(std::nullopt, before)) << "it can't be told";
    EXPECT_TRUE(leaksAfter(before, std::nullopt));
}

TEST(LeakRulesTest, OtherLeaksStayLeaksWhetherSettingsChangedOrNot) {
    LeakBuckets buckets{{LeakBucket::prefsLeak, {"/h/notes/.config/notes/settings"}}};
    rulesOfEntry().setOthersSettingsAside(Settings(), Settings(), buckets);
    EXPECT_EQ(buckets[LeakBucket::prefsLeak].size(), 1U);
}

TEST(LeakRulesTest, PlacesThemselvesAndTheirNeighborsAreIrrelevant) {
    EXPECT_EQ(bucketOf("/h/notes/.config/dconf"), LeakBucket::irrelevant);
    EXPECT_EQ(bucketOf("/h/notes2/.notes"), LeakBucket::irrelevant);
    EXPECT_EQ(bucketOf("/h/notes"), LeakBucket::irrelevant);
    EXPECT_EQ(bucketOf("/h/notes/"), LeakBucket::irrelevant);
    EXPECT_EQ(bucketOf("/L/Application Support/notes"), LeakBucket::irrelevant)
        << "the Library is for bundles";
}

TEST(LeakRulesTest, TheRootMayBeAHome) {
    AppBundle app;
    app.bundleId = "org.example.Notes.desktop";
    app.desktop.emplace();
    const LeakRules rules(app, "/L", {{.folder = "/", .levels = 2, .hiddenOnly = true}});
    EXPECT_EQ(rules.bucketOf("/.notes", "/tmp/home"), LeakBucket::dataLeak);
    EXPECT_EQ(rules.bucketOf("/usr/notes", "/tmp/home"), LeakBucket::irrelevant);
}

TEST(LeakRulesTest, AnEntrysPlacesAreWatched) {
    EXPECT_THAT(rulesOfEntry().watchedFolders("/tmp/home"),
                ElementsAre("/tmp/home", "/h/notes/.config/dconf", "/h/notes/.var/app",
                            "/h/notes/.config", "/h/notes"));
}

TEST(LeakRulesTest, ABundlesLibraryIsWatchedWhole) {
    AppBundle app;
    app.bundleId = "com.example.Notes";
    const LeakRules rules(app, "/L", places());
    EXPECT_THAT(rules.watchedFolders("/tmp/home"), ElementsAre("/tmp/home", "/L"));
    EXPECT_TRUE(rules.isOfInterest("/L/a/b/c/d", "/tmp/home"));
    EXPECT_EQ(rules.bucketOf("/h/notes/.config/notes", "/tmp/home"), LeakBucket::irrelevant);
}

TEST(LeakRulesTest, OfManyFoldersTheUpperOnesAndTheAppsOwnAreOfInterest) {
    const LeakRules rules = rulesOfEntry();
    const auto isOfInterest = [&](const char* folder) {
        return rules.isOfInterest(folder, "/tmp/home");
    };
    EXPECT_TRUE(isOfInterest("/tmp/home/a/b/c/d"));
    EXPECT_TRUE(isOfInterest("/h/notes/.config/other"));
    EXPECT_FALSE(isOfInterest("/h/notes/.config/other/deep"));
    EXPECT_TRUE(isOfInterest("/h/notes/.config/other/notes"));
    EXPECT_TRUE(isOfInterest("/h/notes/.config/notes/a/b/c"));
    EXPECT_TRUE(isOfInterest("/h/notes/.config"));
    EXPECT_TRUE(isOfInterest("/h/notes/.mozilla/deep"));
    EXPECT_FALSE(isOfInterest("/h/notes/.mozilla/deep/deeper"));
    EXPECT_FALSE(isOfInterest("/h/notes/Documents"));
    EXPECT_FALSE(isOfInterest("/h/notes/Documents/notes"));
    EXPECT_FALSE(isOfInterest("/elsewhere"));
}

} // namespace
} // namespace quorvel
