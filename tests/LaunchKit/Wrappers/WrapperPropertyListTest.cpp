#include "LaunchKit/Wrappers/WrapperPropertyList.h"

#include "LaunchKit/InstanceConfig.h"
#include "Platform/files/PropertyListFile.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;

PropertyListValue coerced(std::string_view text) {
    return WrapperPropertyList::coercePlistValue(text);
}

WrapperGenerator::Options plainOptions() {
    WrapperGenerator::Options options;
    options.config = minimalConfig("Work");
    return options;
}

PropertyListDictionary infoPlist(const WrapperGenerator::Options& options) {
    return WrapperPropertyList::infoPlist(options, std::nullopt);
}

TEST(WrapperPropertyListTest, APlainCloneHasExactlyTheTenFixedKeys) {
    EXPECT_EQ(infoPlist(plainOptions()), (PropertyListDictionary{
                                             {"CFBundleName", "Work"},
                                             {"CFBundleDisplayName", "Work"},
                                             {"CFBundleIdentifier", "app.quorvel.instance.test"},
                                             {"CFBundleExecutable", "runner"},
                                             {"CFBundlePackageType", "APPL"},
                                             {"CFBundleInfoDictionaryVersion", "6.0"},
                                             {"CFBundleShortVersionString", "1.0"},
                                             {"CFBundleVersion", "1"},
                                             {"LSMinimumSystemVersion", "13.0"},
                                             {"NSHighResolutionCapable", true},
                                         }));
}

TEST(WrapperPropertyListTest, AnInstalledIconIsNamed) {
    EXPECT_EQ(WrapperPropertyList::infoPlist(plainOptions(), "AppIcon").at("CFBundleIconFile"),
              "AppIcon");
}

TEST(WrapperPropertyListTest, AHiddenWrapperIsAnAgent) {
    WrapperGenerator::Options options = plainOptions();
    options.hideWrapperIcon = true;
    EXPECT_EQ(infoPlist(options).at("LSUIElement"), true);
}

TEST(WrapperPropertyListTest, ABrowserDeclaresTheWebsSchemesUnderItsIdentifier) {
    WrapperGenerator::Options options = plainOptions();
    options.config.registerAsBrowser = true;
    const PropertyListArray expected{PropertyListDictionary{
        {"CFBundleURLName", "app.quorvel.instance.test"},
        {"CFBundleURLSchemes", PropertyListArray{"http", "https"}},
    }};
    EXPECT_EQ(infoPlist(options).at("CFBundleURLTypes"), expected);
}

TEST(WrapperPropertyListTest, PassthroughOffersToViewAnyDocument) {
    WrapperGenerator::Options options = plainOptions();
    options.config.openWithPassthrough = true;
    const PropertyListArray expected{PropertyListDictionary{
        {"CFBundleTypeName", "All Files"},
        {"LSItemContentTypes", PropertyListArray{"public.data", "public.content"}},
        {"CFBundleTypeRole", "Viewer"},
        {"LSHandlerRank", "Alternate"},
    }};
    EXPECT_EQ(infoPlist(options).at("CFBundleDocumentTypes"), expected);
}

TEST(WrapperPropertyListTest, EachFlagAddsItsOwnKeyAlone) {
    const std::size_t fixed = infoPlist(plainOptions()).size();
    WrapperGenerator::Options options = plainOptions();
    options.config.menuBarIcon = true;
    options.config.menuBarIconTemplate = true;
    EXPECT_EQ(infoPlist(options).size(), fixed) << "those are the runner's";
    options = plainOptions();
    options.config.registerAsBrowser = true;
    EXPECT_EQ(infoPlist(options).size(), fixed + 1);
    options = plainOptions();
    options.config.openWithPassthrough = true;
    EXPECT_EQ(infoPlist(options).size(), fixed + 1);
    options = plainOptions();
    options.hideWrapperIcon = true;
    EXPECT_EQ(infoPlist(options).size(), fixed + 1);
}

TEST(WrapperPropertyListTest, OverridesReplaceEverything) {
    WrapperGenerator::Options options = plainOptions();
    options.hideWrapperIcon = true;
    options.config.registerAsBrowser = true;
    options.config.openWithPassthrough = true;
    options.config.infoPlistOverrides = {
        {"CFBundleURLTypes", "no"},
        {"CFBundleDocumentTypes", "no"},
        {"CFBundleIconFile", "mine"},
        {"LSUIElement", "no"},
        {"NSHighResolutionCapable", "NO"},
        {"CFBundleVersion", "42"},
        {"LSMinimumSystemVersion", "12.0"},
        {"CFBundleIdentifier", "other"},
        {"CFBundleExecutable", "x"},
        {"", "an empty key"},
        {"New", "yes"},
    };
    const PropertyListDictionary info = WrapperPropertyList::infoPlist(options, "AppIcon");
    EXPECT_EQ(info.at("LSUIElement"), false);
    EXPECT_EQ(info.at("CFBundleURLTypes"), false);
    EXPECT_EQ(info.at("CFBundleDocumentTypes"), false);
    EXPECT_EQ(info.at("CFBundleIconFile"), "mine");
    EXPECT_EQ(info.at("NSHighResolutionCapable"), false);
    EXPECT_EQ(info.at("CFBundleVersion"), std::int64_t{42});
    EXPECT_EQ(info.at("LSMinimumSystemVersion"), "12.0");
    EXPECT_EQ(info.at("CFBundleIdentifier"), "other");
    EXPECT_EQ(info.at("CFBundleExecutable"), "x");
    EXPECT_EQ(info.at(""), "an empty key");
    EXPECT_EQ(info.at("New"), true);
}

TEST(WrapperPropertyListTest, AnOverriddenIdentifierLeavesTheConfigurationAlone) {
    const TemporaryFolder folder;
    const TemporaryHome home;
    write(folder / "runner", "");
    WrapperGenerator::Options options = plainOptions();
    options.config.kind = ShortcutKind::web;
    options.runnerBinary = folder / "runner";
    options.config.infoPlistOverrides = {{"CFBundleIdentifier", "other"}};
    const auto wrapper = WrapperGenerator().generate(folder.path(), options);
    EXPECT_EQ(readPropertyList(wrapper / "Contents/Info.plist")->at("CFBundleIdentifier"), "other");
    EXPECT_EQ(InstanceConfig::read(wrapper / "Contents/Resources/instance.json")->bundleId,
              "app.quorvel.instance.test");
}

TEST(WrapperPropertyListTest, WordsForTrueAndFalseAreBooleans) {
    for (const char* text : {"true", "YES", " Yes\t", "True"}) {
        EXPECT_EQ(coerced(text), true) << text;
    }
    for (const char* text : {"false", "NO", " no ", "False"}) {
        EXPECT_EQ(coerced(text), false) << text;
    }
}

TEST(WrapperPropertyListTest, WholeNumbersAreIntegers) {
    EXPECT_EQ(coerced("42"), std::int64_t{42});
    EXPECT_EQ(coerced(" 7 "), std::int64_t{7});
    EXPECT_EQ(coerced("-7"), std::int64_t{-7});
    EXPECT_EQ(coerced("+7"), std::int64_t{7});
    EXPECT_EQ(coerced("007"), std::int64_t{7});
    EXPECT_EQ(coerced("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(coerced("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
}

TEST(WrapperPropertyListTest, EverythingElseStaysTheTextItIs) {
    for (const char* text :
         {"",     " ",      " \t", " seven ", "1.5",   "0x10", "1e3",   "9223372036854775808",
          "-",    "+",      "+-5", "--5",     "- 5",   "1 2",  "1_000", "٣",
          "12.0", "truely", "y",   "\n7",     "yes\n", "[1]"}) {
        EXPECT_EQ(coerced(text), text) << text;
    }
}

} // namespace
} // namespace quorvel
