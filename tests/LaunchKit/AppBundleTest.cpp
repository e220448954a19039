#include "LaunchKit/AppBundle.h"

#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class AppBundleTest : public ::testing::Test {
protected:
    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    [[nodiscard]] fs::path bundleWith(const PropertyListDictionary& info) const {
        write(at("Foo.app/Contents/Info.plist"), PropertyList::xml(info));
        return at("Foo.app");
    }

    [[nodiscard]] fs::path bundleOf(std::string_view bytes) const {
        write(at("Foo.app/Contents/Info.plist"), bytes);
        return at("Foo.app");
    }

    // A code-signing tool that prints this text.
    [[nodiscard]] EntitlementReader toolPrinting(const std::string& text) const {
        write(at("text"), text);
        write(at("tool"), "#!/bin/sh\nprintf '%s\\n' \"$@\" > " + at("arguments").string() +
                              "\necho noise >&2\ncat " + at("text").string() + "\nexit 3\n");
        makeExecutable(at("tool"));
        return codeSigningTool(at("tool"));
    }

    TemporaryFolder folder_;
};

TEST_F(AppBundleTest, FactsAreReadFromThePropertyList) {
    const auto bundle = AppBundle::read(
        bundleWith({{"CFBundleIdentifier", "com.example.foo"}, {"CFBundleExecutable", "FooMain"}}));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->url, at("Foo.app"));
    EXPECT_EQ(bundle->bundleId, "com.example.foo");
    EXPECT_EQ(bundle->executableName, "FooMain");
    EXPECT_FALSE(bundle->prohibitsMultipleInstances);
    EXPECT_FALSE(bundle->sandboxed);
}

TEST_F(AppBundleTest, WithoutAnIdentifierTheFoldersNameServes) {
    const auto bundle = AppBundle::read(bundleWith({}));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->bundleId, "Foo");
    EXPECT_EQ(bundle->executableName, "Foo");
}

TEST_F(AppBundleTest, AnIdentifierThatIsNotAStringCountsAsMissing) {
    const auto bundle = AppBundle::read(bundleWith(
        {{"CFBundleIdentifier", std::int64_t{5}}, {"CFBundleExecutable", PropertyListArray{}}}));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->bundleId, "Foo");
    EXPECT_EQ(bundle->executableName, "Foo");
}

TEST_F(AppBundleTest, AnEmptyIdentifierIsStillAnIdentifier) {
    const auto bundle =
        AppBundle::read(bundleWith({{"CFBundleIdentifier", ""}, {"CFBundleExecutable", ""}}));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->bundleId, "");
    EXPECT_EQ(bundle->executableName, "");
}

TEST_F(AppBundleTest, TheLocationStaysAsGiven) {
    const fs::path given = bundleWith({}).string() + "/";
    const auto bundle = AppBundle::read(given);
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->url.native(), given.native());
    EXPECT_EQ(bundle->bundleId, "Foo");
}

TEST_F(AppBundleTest, TheExecutableIsInContentsMacOS) {
    AppBundle bundle;
    bundle.url = "/A/B.app";
    bundle.executableName = "X";
    EXPECT_EQ(bundle.executableURL(), "/A/B.app/Contents/MacOS/X");
    bundle.executableName = "/bin/sh";
    EXPECT_EQ(bundle.executableURL().native(), "/A/B.app/Contents/MacOS//bin/sh");
}

TEST_F(AppBundleTest, OnlyATrueBooleanProhibitsMultipleInstances) {
    const auto prohibits = [&](const PropertyListValue& value) {
        return AppBundle::read(bundleWith({{"LSMultipleInstancesProhibited", value}}))
            ->prohibitsMultipleInstances;
    };
    EXPECT_TRUE(prohibits(true));
    EXPECT_TRUE(prohibits(std::int64_t{1}));
    EXPECT_FALSE(prohibits(false));
    EXPECT_FALSE(prohibits(std::int64_t{0}));
    EXPECT_FALSE(prohibits(std::int64_t{2}));
    EXPECT_FALSE(prohibits("YES"));
    EXPECT_FALSE(prohibits("true"));
}

TEST_F(AppBundleTest, AFolderWithoutAPropertyListIsNotABundle) {
    bool asked = false;
    const EntitlementReader never = [&](const fs::path&) {
        asked = true;
        return std::string{};
    };
    fs::create_directories(at("Bare.app/Contents"));
    EXPECT_FALSE(AppBundle::read(at("Bare.app"), never));
    EXPECT_FALSE(AppBundle::read(at("none.app"), never));
    EXPECT_FALSE(asked) << "the tool has nothing to look at";
}

TEST_F(AppBundleTest, AnUnreadablePropertyListIsNotABundle) {
    EXPECT_FALSE(AppBundle::read(bundleOf("")));
    EXPECT_FALSE(AppBundle::read(bundleOf("<plist><array/></plist>")));
    EXPECT_FALSE(AppBundle::read(bundleOf("not a property list")));
    const fs::path file = at("Foo.app/Contents/Info.plist");
    fs::remove(file);
    ::mkfifo(file.c_str(), 0600);
    EXPECT_FALSE(AppBundle::read(at("Foo.app")));
    fs::remove(file);
    fs::create_symlink(file, file);
    EXPECT_FALSE(AppBundle::read(at("Foo.app")));
    fs::remove(file);
    fs::create_directory(file);
    EXPECT_FALSE(AppBundle::read(at("Foo.app")));
}

TEST_F(AppBundleTest, Latin1BytesInThePropertyListAreRead) {
    const auto bundle = AppBundle::read(bundleOf(
        "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>com.caf\xE9</string>"
        "<key>CFBundleExecutable</key><string>x</string></dict></plist>"));
    ASSERT_TRUE(bundle);
    EXPECT_EQ(bundle->bundleId, "com.café");
}

TEST_F(AppBundleTest, ADanglingExecutableDoesNotKeepTheFactsFromBeingRead) {
    const fs::path app = bundleWith({{"CFBundleExecutable", "x"}});
    fs::create_directories(app / "Contents/MacOS");
    fs::create_symlink("nowhere", app / "Contents/MacOS/x");
    EXPECT_TRUE(AppBundle::read(app));
}

TEST_F(AppBundleTest, TheSandboxKeyDecidesForAnyValueAndExitStatus) {
    const fs::path app = bundleWith({});
    EXPECT_TRUE(
        AppBundle::read(app, toolPrinting("<key>com.apple.security.app-sandbox</key><true/>"))
            ->sandboxed);
    EXPECT_TRUE(
        AppBundle::read(app, toolPrinting("<key>com.apple.security.app-sandbox</key><false/>"))
            ->sandboxed);
    EXPECT_FALSE(
        AppBundle::read(app, toolPrinting("<key>COM.APPLE.SECURITY.APP-SANDBOX</key>"))->sandboxed);
    EXPECT_FALSE(AppBundle::read(app, toolPrinting(""))->sandboxed);
}

TEST_F(AppBundleTest, OutputThatIsNotUtf8CountsAsEmpty) {
    EXPECT_FALSE(
        AppBundle::read(bundleWith({}), toolPrinting("com.apple.security.app-sandbox \xFF"))
            ->sandboxed);
}

TEST_F(AppBundleTest, TheToolIsAskedInExactlyThisWay) {
    const fs::path app = bundleWith({});
    ASSERT_TRUE(AppBundle::read(app, toolPrinting("")));
    EXPECT_EQ(read(at("arguments")), "-d\n--entitlements\n:-\n--xml\n" + app.string() + "\n");
}

TEST_F(AppBundleTest, AToolsOutputIsReadEvenIfItExceedsAPipe) {
    EXPECT_TRUE(AppBundle::read(bundleWith({}), toolPrinting(std::string(300'000, ' ') +
                                                             "com.apple.security.app-sandbox"))
                    ->sandboxed);
}

TEST_F(AppBundleTest, WithoutTheToolNothingIsSandboxed) {
    const auto bundle = AppBundle::read(bundleWith({}), codeSigningTool("/no/such/codesign"));
    ASSERT_TRUE(bundle);
    EXPECT_FALSE(bundle->sandboxed);
}

} // namespace
} // namespace quorvel
