#include "LaunchKit/AppCatalog.h"

#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <algorithm>
#include <atomic>
#include <gmock/gmock.h>
#include <mutex>
#include <random>
#include <set>
#include <sys/stat.h>
#include <thread>
#include <unordered_set>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

std::string noEntitlements(const fs::path& /*bundle*/) {
    return {};
}

std::vector<InstalledApp> scan(const std::vector<fs::path>& dirs) {
    return AppCatalog::scan(dirs, noEntitlements);
}

std::vector<std::string> namesOf(const std::vector<InstalledApp>& apps) {
    std::vector<std::string> names;
    names.reserve(apps.size());
    for (const InstalledApp& app : apps) {
        names.push_back(app.name);
    }
    return names;
}

// A bundle with this property list and nothing else.
fs::path makeBundle(const fs::path& bundle, const PropertyListDictionary& info) {
    write(bundle / "Contents/Info.plist", PropertyList::xml(info));
    return bundle;
}

fs::path makeBundle(const fs::path& bundle) {
    return makeBundle(bundle, {{"CFBundleIdentifier", "com.example." + bundle.stem().string()}});
}

TEST(AppCatalogTest, LooksInTheUsualFoldersInOrder) {
    const TemporaryHome home;
    EXPECT_THAT(AppCatalog::defaultSearchDirs(),
                ElementsAre("/Applications", "/Applications/Utilities", home / "Applications",
                            "/System/Applications"));
}

TEST(AppCatalogTest, ListsAnAppAsItWasFound) {
    const TemporaryFolder folder;
    const fs::path app = makeBundle(folder / "Safari.app", {{"CFBundleIdentifier", "com.a.S"},
                                                            {"CFBundleDisplayName", "Other"},
                                                            {"CFBundleName", "Other"}});
    EXPECT_THAT(scan({folder.path()}), ElementsAre(InstalledApp{app, "Safari", "com.a.S"}));
}

TEST(AppCatalogTest, LeavesOutClones) {
    const TemporaryFolder folder;
    makeBundle(folder / "App.app");
    makeWrapper(makeBundle(folder / "Clone.app"), "Work");
    write(makeBundle(folder / "Broken Clone.app") / "Contents/Resources/instance.json", "");
    EXPECT_THAT(namesOf(scan({folder.path()})), ElementsAre("App"));
}

TEST(AppCatalogTest, DoesNotRunTheToolForAClone) {
    const TemporaryFolder folder;
    makeWrapper(makeBundle(folder / "Clone.app"), "Work");
    std::atomic<int> calls{0};
    (void)AppCatalog::scan({folder.path()}, [&](const fs::path& /*bundle*/) {
        ++calls;
        return std::string{};
    });
    EXPECT_EQ(calls, 0);
}

TEST(AppCatalogTest, ListsAnIdentifierOnceFromTheFirstFolder) {
    const TemporaryFolder folder;
    const fs::path first = makeBundle(folder / "a/Safari.app", {{"CFBundleIdentifier", "com.a.S"}});
    makeBundle(folder / "b/Browser.app", {{"CFBundleIdentifier", "com.a.S"}});
    EXPECT_THAT(scan({folder / "a", folder / "b"}),
                ElementsAre(InstalledApp{first, "Safari", "com.a.S"}));
}

TEST(AppCatalogTest, RunsTheToolForADuplicateToo) {
    const TemporaryFolder folder;
    makeBundle(folder / "a/A.app");
    makeBundle(folder / "b/A.app");
    std::atomic<int> calls{0};
    (void)AppCatalog::scan({folder / "a", folder / "b"}, [&](const fs::path& /*bundle*/) {
        ++calls;
        return std::string{};
    });
    EXPECT_EQ(calls, 2);
}

TEST(AppCatalogTest, DoesNotLookIntoSubfolders) {
    const TemporaryFolder folder;
    makeBundle(folder / "Tools/Deep.app");
    makeBundle(folder / "Outer.app");
    makeBundle(folder / "Outer.app/Contents/Inner.app");
    EXPECT_THAT(namesOf(scan({folder.path()})), ElementsAre("Outer"));
}

TEST(AppCatalogTest, SortsByNameIgnoringCase) {
    const TemporaryFolder folder;
    for (const char* name : {"zoom.app", "Arc.app", "émile.app", "Fig.app"}) {
        makeBundle(folder / name);
    }
    EXPECT_THAT(namesOf(scan({folder.path()})), ElementsAre("Arc", "émile", "Fig", "zoom"));
}

TEST(AppCatalogTest, KeepsEqualNamesInTheOrderOfTheFolders) {
    const TemporaryFolder folder;
    makeBundle(folder / "b/app.app", {{"CFBundleIdentifier", "1"}});
    makeBundle(folder / "a/App.app", {{"CFBundleIdentifier", "2"}});
    makeBundle(folder / "c/APP.app", {{"CFBundleIdentifier", "3"}});
    const auto apps = scan({folder / "b", folder / "a", folder / "c"});
    ASSERT_EQ(apps.size(), 3U);
    EXPECT_EQ(apps[0].bundleId + apps[1].bundleId + apps[2].bundleId, "123");
}

TEST(AppCatalogTest, TakesTheFoldersNameWhereAnIdentifierIsMissing) {
    const TemporaryFolder folder;
    const fs::path first = makeBundle(folder / "a/Plain.app", PropertyListDictionary{});
    makeBundle(folder / "b/Plain.app", PropertyListDictionary{});
    EXPECT_THAT(scan({folder / "a", folder / "b"}),
                ElementsAre(InstalledApp{first, "Plain", "Plain"}));
}

TEST(AppCatalogTest, TakesOnlyTheExactExtension) {
    const TemporaryFolder folder;
    for (const char* name : {"A.APP", "B.app.bak", "C", "D.App", "app", ".app"}) {
        makeBundle(folder / name);
    }
    makeBundle(folder / "E.tar.app");
    makeBundle(folder / ".hidden.app");
    EXPECT_THAT(namesOf(scan({folder.path()})), ElementsAre(".hidden", "E.tar"));
}

TEST(AppCatalogTest, SkipsWhatItCannotRead) {
    const TemporaryFolder folder;
    makeBundle(folder / "Good.app");
    write(folder / "File.app", "no folder");
    fs::create_directories(folder / "Empty.app");
    write(folder / "Garbage.app/Contents/Info.plist", "<plist><dict>");
    write(folder / "Array.app/Contents/Info.plist",
          "<plist version=\"1.0\"><array><string>a</string></array></plist>");
    fs::create_directories(folder / "Folder.app/Contents/Info.plist");
    fs::create_directories(folder / "Pipe.app/Contents");
    ASSERT_EQ(::mkfifo((folder / "Pipe.app/Contents/Info.plist").c_str(), 0600), 0);
    fs::create_directory_symlink(folder / "nowhere", folder / "Dangling.app");
    fs::create_directories(folder / "Loop.app/Contents");
    fs::create_symlink("Info.plist", folder / "Loop.app/Contents/Info.plist");
    EXPECT_THAT(namesOf(scan({folder / "missing", folder.path(), folder / "File.app"})),
                ElementsAre("Good"));
}

TEST(AppCatalogTest, FollowsALinkToAnApp) {
    const TemporaryFolder folder;
    makeBundle(folder / "elsewhere/Real.app");
    fs::create_directories(folder / "apps");
    fs::create_directory_symlink(folder / "elsewhere/Real.app", folder / "apps/Linked.app");
    EXPECT_THAT(scan({folder / "apps"}), ElementsAre(InstalledApp{folder / "apps/Linked.app",
                                                                  "Linked", "com.example.Real"}));
}

TEST(AppCatalogTest, ListsNamesOfAnyBytes) {
    const TemporaryFolder folder;
    makeBundle(folder / "line\nbreak <b>\x1b[31m.app", {{"CFBundleIdentifier", "1"}});
    makeBundle(folder / "\xff\xfe.app", {{"CFBundleIdentifier", "2"}});
    EXPECT_EQ(scan({folder.path()}).size(), 2U);
}

TEST(AppCatalogTest, OfNoFoldersIsEmpty) {
    EXPECT_THAT(scan({}), IsEmpty());
}

TEST(AppCatalogTest, ReadsSeveralBundlesAtATime) {
    const TemporaryFolder folder;
    for (int number = 0; number < 12; ++number) {
        makeBundle(folder / (std::to_string(number) + ".app"));
    }
    std::mutex mutex;
    std::set<std::thread::id> threads;
    std::atomic<int> inside{0};
    std::atomic<bool> met{false};
    (void)AppCatalog::scan({folder.path()}, [&](const fs::path& /*bundle*/) {
        ++inside;
        for (int turn = 0; turn < 2000 && !met; ++turn) {
            met = met || inside >= 2;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        --inside;
        const std::lock_guard guard(mutex);
        threads.insert(std::this_thread::get_id());
        return std::string{};
    });
    EXPECT_TRUE(met);
    EXPECT_GE(threads.size(), 2U);
}

// The order of the folders decides, not which bundle happens to be read first.
TEST(AppCatalogTest, ReturnsTheSequentialResultForAnyOrderOfThreads) {
    const TemporaryFolder folder;
    std::vector<fs::path> dirs;
    for (int dir = 0; dir < 4; ++dir) {
        dirs.push_back(folder / std::to_string(dir));
        for (int number = dir; number < 40; number += dir + 1) {
            makeBundle(dirs.back() / ("App " + std::to_string(number % 17) + " " +
                                      std::to_string(number) + ".app"),
                       {{"CFBundleIdentifier", "com.example." + std::to_string(number)}});
        }
    }
    const auto slowly = [](const fs::path& bundle) {
        const auto delay = std::hash<std::string>{}(bundle.string()) % 5;
        std::this_thread::sleep_for(std::chrono::milliseconds(delay));
        return std::string{};
    };
    const auto expected = scan(dirs);
    EXPECT_EQ(expected.size(), 40U);
    for (const InstalledApp& app : expected) {
        EXPECT_EQ(app.url.parent_path(), dirs.front()) << app.url;
    }
    for (int turn = 0; turn < 5; ++turn) {
        EXPECT_THAT(AppCatalog::scan(dirs, slowly), ElementsAreArray(expected));
    }
}

TEST(AppCatalogTest, RunsTheGivenToolOnEachBundle) {
    const TemporaryFolder folder;
    makeBundle(folder / "apps/A.app");
    makeBundle(folder / "apps/B.app");
    const fs::path tool = folder / "tool";
    write(tool, "#!/bin/sh\necho \"$5\" >> '" + (folder / "calls").string() + "'\n");
    makeExecutable(tool);
    EXPECT_EQ(AppCatalog::scan({folder / "apps"}, codeSigningTool(tool)).size(), 2U);
    const std::string calls = read(folder / "calls");
    EXPECT_NE(calls.find("A.app\n"), std::string::npos);
    EXPECT_NE(calls.find("B.app\n"), std::string::npos);
}

TEST(AppCatalogTest, DoesWithoutATool) {
    const TemporaryFolder folder;
    makeBundle(folder / "apps/A.app");
    EXPECT_EQ(AppCatalog::scan({folder / "apps"}, codeSigningTool(folder / "none")).size(), 1U);
}

TEST(AppCatalogTest, InstalledAppIsIdentifiedByItsPathAndEqualInAllThree) {
    const InstalledApp app{"/A/Safari.app", "Safari", "com.a.S"};
    EXPECT_EQ(app.id(), "/A/Safari.app");
    EXPECT_EQ(app, (InstalledApp{"/A/Safari.app", "Safari", "com.a.S"}));
    const std::unordered_set<InstalledApp> all{app,
                                               {"/B/Safari.app", "Safari", "com.a.S"},
                                               {"/A/Safari.app", "Other", "com.a.S"},
                                               {"/A/Safari.app", "Safari", "com.b.S"},
                                               app};
    EXPECT_EQ(all.size(), 4U);
}

// The icon of an app whose property list says this and whose resources hold that file.
std::optional<fs::path> iconOf(const fs::path& bundle, const PropertyListDictionary& info,
                               const std::string& file) {
    makeBundle(bundle, info);
    write(bundle / "Contents/Resources" / file, "icon");
    return InstalledApp{bundle, "A", "a"}.iconURL();
}

TEST(AppCatalogTest, InstalledAppIconIsTheNamedFile) {
    const TemporaryFolder folder;
    const fs::path icon = folder / "A.app/Contents/Resources/AppIcon.icns";
    EXPECT_EQ(iconOf(folder / "A.app", {{"CFBundleIconFile", "AppIcon.icns"}}, "AppIcon.icns"),
              icon);
    EXPECT_EQ(iconOf(folder / "A.app", {{"CFBundleIconFile", "AppIcon"}}, "AppIcon.icns"), icon);
}

TEST(AppCatalogTest, InstalledAppIconGetsASecondExtensionAfterOneInUpperCase) {
    const TemporaryFolder folder;
    const PropertyListDictionary info{{"CFBundleIconFile", "AppIcon.ICNS"}};
    EXPECT_EQ(iconOf(folder / "A.app", info, "AppIcon.ICNS"), std::nullopt);
    EXPECT_EQ(iconOf(folder / "B.app", info, "AppIcon.ICNS.icns"),
              folder / "B.app/Contents/Resources/AppIcon.ICNS.icns");
}

TEST(AppCatalogTest, InstalledAppIconIsMissingWhereNoneIsNamedOrThere) {
    const TemporaryFolder folder;
    EXPECT_EQ(iconOf(folder / "A.app", PropertyListDictionary{}, "AppIcon.icns"), std::nullopt);
    EXPECT_EQ(iconOf(folder / "B.app", {{"CFBundleIconFile", true}}, "AppIcon.icns"), std::nullopt);
    EXPECT_EQ(iconOf(folder / "C.app", {{"CFBundleIconFile", "Other"}}, "AppIcon.icns"),
              std::nullopt);
    EXPECT_EQ((InstalledApp{folder / "None.app", "A", "a"}.iconURL()), std::nullopt);
}

TEST(AppCatalogTest, AnAppsHashIsMadeOfEverythingThatMakesItEqual) {
    const std::hash<InstalledApp> hash;
    const InstalledApp app{"/A/Mail.app", "Mail", "com.example.mail"};
    EXPECT_EQ(hash(app), hash(InstalledApp(app)));
    EXPECT_NE(hash(app), hash({"/B/Mail.app", "Mail", "com.example.mail"}));
    EXPECT_NE(hash(app), hash({"/A/Mail.app", "Post", "com.example.mail"}));
    EXPECT_NE(hash(app), hash({"/A/Mail.app", "Mail", "com.example.post"}));
}

} // namespace
} // namespace quorvel
