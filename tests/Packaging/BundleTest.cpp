#include "LaunchKit/Icons/IcnsFile.h"

#include "Platform/files/FileSystem.h"
#include "Platform/files/PropertyListFile.h"
#include "tests/Packaging/Commands.h"
#include "tests/support/AppBundles.h"

#include <QColor>
#include <QImage>

#include <gtest/gtest.h>
#include <map>
#include <set>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;

// The application's bundle, laid out from this build.
class BundleTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = new TemporaryFolder;
        const Outcome installing =
            outcomeOf({QUORVEL_CMAKE, "--install", QUORVEL_BUILD, "--component", "MacBundle",
                       "--prefix", folder_->path().string()});
        ASSERT_EQ(installing.status, 0) << installing.output;
    }
    static void TearDownTestSuite() {
        delete folder_;
        folder_ = nullptr;
    }

    static fs::path contents() { return folder_->path() / "Quorvel.app/Contents"; }
    static std::string info(const std::string& key) {
        const auto dictionary = readPropertyList(contents() / "Info.plist");
        return dictionary ? PropertyList::stringFor(*dictionary, key).value_or("") : "";
    }

    static TemporaryFolder* folder_;
};

TemporaryFolder* BundleTest::folder_ = nullptr;

TEST_F(BundleTest, ContainsTheseFilesAndNoOther) {
    std::set<std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder_->path())) {
        if (!entry.is_directory()) {
            files.insert(fs::relative(entry.path(), folder_->path()).string());
        }
    }
    EXPECT_EQ(files, (std::set<std::string>{
                         "Quorvel.app/Contents/Info.plist",
                         "Quorvel.app/Contents/MacOS/Quorvel",
                         "Quorvel.app/Contents/MacOS/quorvelctl",
                         "Quorvel.app/Contents/PkgInfo",
                         "Quorvel.app/Contents/Resources/AppIcon.icns",
                         "Quorvel.app/Contents/Resources/quorvel-runner",
                     }));
}

TEST_F(BundleTest, MakesOnlyItsProgramsExecutable) {
    for (const auto& entry : fs::recursive_directory_iterator(contents())) {
        const fs::path& file = entry.path();
        const bool isProgram =
            file.parent_path().filename() == "MacOS" || file.filename() == "quorvel-runner";
        const auto expected = fs::perms(isProgram || entry.is_directory() ? 0755 : 0644);
        EXPECT_EQ(entry.status().permissions(), expected) << file;
        EXPECT_FALSE(entry.is_symlink()) << file;
    }
}

TEST_F(BundleTest, SaysWhatItIs) {
    EXPECT_EQ(info("CFBundleIdentifier"), "app.quorvel.Quorvel");
    EXPECT_EQ(info("CFBundleName"), "Quorvel");
    EXPECT_EQ(info("CFBundlePackageType"), "APPL");
    EXPECT_EQ(info("CFBundleShortVersionString"), QUORVEL_VERSION);
    EXPECT_EQ(info("LSMinimumSystemVersion"), "13.0");
    EXPECT_EQ(read(contents() / "PkgInfo"), "APPL????");
    EXPECT_TRUE(isExecutableFile(contents() / "MacOS" / info("CFBundleExecutable")));
    EXPECT_TRUE(itemExists(contents() / "Resources" / (info("CFBundleIconFile") + ".icns")));
    const auto dictionary = readPropertyList(contents() / "Info.plist");
    ASSERT_TRUE(dictionary);
    EXPECT_EQ(dictionary->at("NSHighResolutionCapable"), true);
}

TEST_F(BundleTest, HasANumberForItsBuild) {
    const std::string number = info("CFBundleVersion");
    EXPECT_FALSE(number.empty());
    EXPECT_EQ(number.find_first_not_of("0123456789."), std::string::npos) << number;
}

TEST_F(BundleTest, HasNoUpdatesWithoutAFeed) {
    EXPECT_EQ(info("SUFeedURL"), "");
    EXPECT_EQ(info("SUPublicEDKey"), "");
}

TEST_F(BundleTest, HasAnInfoPlistThatTheSystemsOwnToolReads) {
    const std::string file = (contents() / "Info.plist").string();
    const Outcome reading =
        itemExists("/usr/bin/plutil")
            ? outcomeOf({"/usr/bin/plutil", "-convert", "xml1", "-o", "-", file})
            : outcomeOf({"plistutil", "-f", "xml", "-i", file});
    EXPECT_EQ(reading.status, 0) << reading.output;
    EXPECT_NE(reading.output.find("<string>app.quorvel.Quorvel</string>"), std::string::npos)
        << reading.output;
}

TEST_F(BundleTest, HasAnIconInEverySize) {
    const auto icon = IcnsFile::read(contents() / "Resources/AppIcon.icns");
    ASSERT_TRUE(icon);
    std::map<std::string, int> sides;
    for (const IcnsEntry& entry : icon->entries()) {
        sides[entry.type] = entry.width;
        EXPECT_EQ(entry.width, entry.height);
    }
    EXPECT_EQ(sides, (std::map<std::string, int>{{"ic04", 16},
                                                 {"ic05", 32},
                                                 {"ic07", 128},
                                                 {"ic08", 256},
                                                 {"ic09", 512},
                                                 {"ic10", 1024},
                                                 {"ic11", 32},
                                                 {"ic12", 64},
                                                 {"ic13", 256},
                                                 {"ic14", 512}}));
}

TEST_F(BundleTest, HasTheIconThatIsDrawn) {
    const auto icon = IcnsFile::read(contents() / "Resources/AppIcon.icns");
    ASSERT_TRUE(icon);
    for (std::size_t index = 0; index < icon->entries().size(); ++index) {
        const QImage image = icon->decode(index);
        ASSERT_FALSE(image.isNull());
        const int side = image.width();
        EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0) << "its corners are empty";
        // Blue ground, a white square above the middle, a blue one below.
        const QColor ground = image.pixelColor(side / 8, side / 2);
        EXPECT_GT(ground.blue(), ground.red() + 50) << side;
        EXPECT_EQ(ground.alpha(), 255) << side;
        EXPECT_GT(image.pixelColor(side * 5 / 16, side * 5 / 16).red(), 240) << side;
    }
}

TEST_F(BundleTest, HasACommandLineThatMakesClonesWithItsOwnRunner) {
    const TemporaryHome home;
    const fs::path app = makeAppBundle(home / "Thing.app");
    const Outcome creating = outcomeOf({(contents() / "MacOS/quorvelctl").string(), "create",
                                        "--target", app.string(), "--name", "Work"});
    ASSERT_EQ(creating.status, 0) << creating.output;
    EXPECT_EQ(read(home / "Applications/Work.app/Contents/MacOS/runner"),
              read(contents() / "Resources/quorvel-runner"));
}

// The application's Info.plist for these settings of the build.
class BundleTestInfoPlist : public ::testing::Test {
protected:
    Outcome made(std::vector<std::string> settings) {
        std::vector<std::string> command{QUORVEL_CMAKE, "-DQUORVEL_VERSION=1.2",
                                         "-DOUTPUT=" + file_.string()};
        command.insert(command.end(), settings.begin(), settings.end());
        command.insert(command.end(), {"-P", QUORVEL_SOURCE "/cmake/QuorvelInfoPlist.cmake"});
        return outcomeOf(command);
    }
    [[nodiscard]] std::string entry(const std::string& key) const {
        const auto dictionary = readPropertyList(file_);
        return dictionary ? PropertyList::stringFor(*dictionary, key).value_or("none") : "no file";
    }

    TemporaryFolder folder_;
    fs::path file_ = folder_ / "Info.plist";
};

TEST_F(BundleTestInfoPlist, NamesTheFeedOfUpdatesWhenThereIsOne) {
    const std::string feed = "https://example.com/feed?a=1&b=<2>";
    const Outcome making = made({"-DQUORVEL_BUILD_NUMBER=7", "-DQUORVEL_UPDATE_FEED=" + feed,
                                 "-DQUORVEL_UPDATE_KEY=a+b/c="});
    ASSERT_EQ(making.status, 0) << making.output;
    EXPECT_EQ(entry("SUFeedURL"), feed);
    EXPECT_EQ(entry("SUPublicEDKey"), "a+b/c=");
    EXPECT_EQ(entry("CFBundleVersion"), "7");
    EXPECT_EQ(entry("CFBundleShortVersionString"), "1.2");
}

TEST_F(BundleTestInfoPlist, NamesTheOldestSystemThatTheBuildIsFor) {
    ASSERT_EQ(made({"-DQUORVEL_BUILD_NUMBER=7"}).status, 0);
    EXPECT_EQ(entry("LSMinimumSystemVersion"), "13.0");
    ASSERT_EQ(made({"-DQUORVEL_BUILD_NUMBER=7", "-DCMAKE_OSX_DEPLOYMENT_TARGET=14.2"}).status, 0);
    EXPECT_EQ(entry("LSMinimumSystemVersion"), "14.2");
}

TEST_F(BundleTestInfoPlist, NamesNoFeedByDefault) {
    ASSERT_EQ(made({"-DQUORVEL_BUILD_NUMBER=7"}).status, 0);
    EXPECT_EQ(entry("SUFeedURL"), "none");
}

TEST_F(BundleTestInfoPlist, RefusesANumberThatCannotTellUpdatesApart) {
    for (const char* number : {"", "seven", "7-beta", "1.2.3.4", "1."}) {
        const Outcome making = made({std::string("-DQUORVEL_BUILD_NUMBER=") + number});
        EXPECT_NE(making.status, 0) << number;
        EXPECT_NE(making.output.find("QUORVEL_BUILD_NUMBER must be"), std::string::npos);
    }
    EXPECT_EQ(entry("CFBundleVersion"), "no file");
}

TEST_F(BundleTestInfoPlist, RefusesAKeyWithoutAFeed) {
    EXPECT_NE(made({"-DQUORVEL_BUILD_NUMBER=7", "-DQUORVEL_UPDATE_KEY=abc"}).status, 0);
}

} // namespace
} // namespace quorvel::testing
