#include "LaunchKit/WrapperGenerator.h"

#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/Wrappers/WrapperPropertyList.h"
#include "Platform/files/PlatformError.h"
#include "Platform/files/PropertyListFile.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::string_literals;
using GenError = WrapperGenerator::GenError;
namespace fs = std::filesystem;

class WrapperGeneratorTest : public ::testing::Test {
protected:
    WrapperGeneratorTest() {
        write(folder_ / "runner-file", "runner\0bytes"s);
        fs::permissions(folder_ / "runner-file", fs::perms{0640});
    }

    [[nodiscard]] fs::path at(std::string_view name) const { return folder_ / name; }

    [[nodiscard]] WrapperGenerator::Options webOptions(const std::string& name = "Work") const {
        WrapperGenerator::Options options;
        options.config = minimalConfig(name);
        options.config.kind = ShortcutKind::web;
        options.runnerBinary = at("runner-file");
        return options;
    }

    // A clone of an app whose property list names this icon.
    [[nodiscard]] WrapperGenerator::Options appOptions(const PropertyListValue& iconFile) const {
        WrapperGenerator::Options options = webOptions();
        options.config.kind = ShortcutKind::app;
        options.config.targetAppPath =
            makeAppBundle(at("Thing.app"), {{"CFBundleIconFile", iconFile}});
        return options;
    }

    [[nodiscard]] fs::path generate(const WrapperGenerator::Options& options) const {
        return WrapperGenerator().generate(at("out"), options);
    }

    [[nodiscard]] std::string iconOf(const WrapperGenerator::Options& options) const {
        const fs::path wrapper = generate(options);
        const auto info = readPropertyList(wrapper / "Contents/Info.plist");
        const fs::path icon = wrapper / "Contents/Resources/AppIcon.icns";
        EXPECT_EQ(PropertyList::stringFor(*info, "CFBundleIconFile"),
                  fs::exists(icon) ? std::optional<std::string>("AppIcon") : std::nullopt);
        return fs::exists(icon) ? read(icon) : "none";
    }

    void targetIcon(const std::string& name, const std::string& bytes) const {
        write(at("Thing.app/Contents/Resources") / name, bytes);
    }

    TemporaryFolder folder_;
    TemporaryHome home_;
};

TEST_F(WrapperGeneratorTest, WritesExactlyTheBundlesFiles) {
    const WrapperGenerator::Options options = webOptions();
    const fs::path wrapper = generate(options);
    EXPECT_EQ(wrapper, at("out/Work.app"));
    const std::map<std::string, std::string> expected{
        {"Contents", "<folder>"},
        {"Contents/MacOS", "<folder>"},
        {"Contents/MacOS/runner", "runner\0bytes"s},
        {"Contents/Resources", "<folder>"},
        {"Contents/Resources/instance.json", options.config.json()},
        {"Contents/Info.plist",
         PropertyList::xml(WrapperPropertyList::infoPlist(options, std::nullopt))},
        {"Contents/PkgInfo", "APPL????"},
    };
    EXPECT_EQ(treeOf(wrapper), expected);
}

TEST_F(WrapperGeneratorTest, OnlyAWebCloneContainsTheWebHostFromBesideTheRunner) {
    write(at("quorvel-web-host.so"), "module");
    WrapperGenerator::Options web = webOptions();
    web.isSelfContained = true;
    WrapperGenerator::Options app = appOptions("none");
    app.isSelfContained = true;
    const char* const module = "Contents/Frameworks/quorvel-web-host.so";
    EXPECT_FALSE(fs::exists(generate(app) / "Contents/Frameworks"));
    EXPECT_EQ(read(generate(web) / module), "module");
    fs::remove(at("quorvel-web-host.so"));
    EXPECT_FALSE(fs::exists(generate(web) / "Contents/Frameworks"));
}

TEST_F(WrapperGeneratorTest, OnlyACloneWithAnIconInTheMenuBarContainsItsProgram) {
    write(at("quorvel-status-item"), "program");
    WrapperGenerator::Options app = appOptions("none");
    app.isSelfContained = true;
    EXPECT_FALSE(fs::exists(generate(app) / "Contents/Helpers"));
    app.config.menuBarIcon = true;
    const fs::path program = generate(app) / "Contents/Helpers/quorvel-status-item";
    EXPECT_EQ(read(program), "program");
    EXPECT_EQ(fs::status(program).permissions(), fs::perms{0755});
    WrapperGenerator::Options web = webOptions();
    web.isSelfContained = true;
    web.config.menuBarIcon = true;
    EXPECT_FALSE(fs::exists(generate(web) / "Contents/Helpers")) << "its window shows the icon";
    app.isSelfContained = false;
    EXPECT_FALSE(fs::exists(generate(app) / "Contents/Helpers")) << "it is installed";
}

TEST_F(WrapperGeneratorTest, TheRunnerIsExecutableForAnyModeOfTheSource) {
    EXPECT_EQ(fs::status(generate(webOptions()) / "Contents/MacOS/runner").permissions(),
              fs::perms{0755});
}

TEST_F(WrapperGeneratorTest, EverythingElseHasTheUsersDefaultPermissions) {
    for (const unsigned mask : {0022U, 0077U, 0002U}) {
        const mode_t before = ::umask(mask);
        const fs::path wrapper = generate(webOptions());
        ::umask(before);
        const auto mode = [&](const char* item) {
            return static_cast<unsigned>(fs::status(wrapper / item).permissions());
        };
        for (const char* folder : {"", "Contents", "Contents/MacOS", "Contents/Resources"}) {
            EXPECT_EQ(mode(folder), 0777U & ~mask) << folder;
        }
        for (const char* file :
             {"Contents/Resources/instance.json", "Contents/Info.plist", "Contents/PkgInfo"}) {
            EXPECT_EQ(mode(file), 0666U & ~mask) << file;
        }
        EXPECT_EQ(mode("Contents/MacOS/runner"), 0755U) << "for any umask";
    }
}

TEST_F(WrapperGeneratorTest, AWrapperOfTheSameNameIsReplacedWhole) {
    write(generate(webOptions()) / "Contents/Resources/left over", "x");
    WrapperGenerator::Options second = webOptions();
    second.config.url = "https://second";
    const fs::path wrapper = generate(second);
    EXPECT_FALSE(fs::exists(wrapper / "Contents/Resources/left over"));
    EXPECT_EQ(read(wrapper / "Contents/Resources/instance.json"), second.config.json());
    EXPECT_EQ(std::distance(fs::directory_iterator(at("out")), fs::directory_iterator()), 1);
}

TEST_F(WrapperGeneratorTest, AFailureLeavesTheOldWrapperAsItIs) {
    (void)generate(webOptions());
    const auto before = treeOf(at("out"));
    WrapperGenerator::Options second = webOptions();
    second.config.url = "https://second";
    second.customIcon = folder_.path();
    EXPECT_THROW((void)generate(second), PlatformError);
    EXPECT_EQ(treeOf(at("out")), before);
}

TEST_F(WrapperGeneratorTest, NotesAreWrittenOnlyIfAskedFor) {
    WrapperGenerator::Options options = appOptions("AppIcon");
    targetIcon("AppIcon.icns", "target's");
    EXPECT_FALSE(WrapperNotes::read(generate(options)));
    options.arguments = ArgumentSource::engine;
    options.hideWrapperIcon = true;
    const fs::path wrapper = generate(options);
    const auto notes = WrapperNotes::read(wrapper);
    ASSERT_TRUE(notes);
    EXPECT_EQ(notes->arguments, ArgumentSource::engine);
    EXPECT_EQ(notes->icon, IconSource::target);
    EXPECT_TRUE(notes->hidesIcon);
    EXPECT_NE(notes->version, "");
    EXPECT_EQ(notes->writtenIcon, fileHash(wrapper / "Contents/Resources/AppIcon.icns"));
    EXPECT_EQ(notes->writtenList, fileHash(wrapper / "Contents/Info.plist"));
    EXPECT_EQ(notes->targetIcon, fileState(at("Thing.app/Contents/Resources/AppIcon.icns")));
    EXPECT_NE(notes->targetIcon, "");
}

TEST_F(WrapperGeneratorTest, AChosenIconIsKeptWithoutTheLabelThatIsDrawnOntoIt) {
    WrapperGenerator::Options options = webOptions();
    write(at("chosen"), "not an image");
    options.customIcon = at("chosen");
    options.arguments = ArgumentSource::typed;
    EXPECT_FALSE(fs::exists(generate(options) / "Contents/Resources/ChosenIcon"));
    options.config.iconLabel = IconLabel{"W", "ff0000", IconLabel::Position::top};
    const fs::path wrapper = generate(options);
    EXPECT_EQ(read(wrapper / "Contents/Resources/ChosenIcon"), "not an image");
    EXPECT_EQ(WrapperNotes::read(wrapper)->icon, IconSource::chosen);
    EXPECT_EQ(WrapperNotes::read(wrapper)->targetIcon, "");
}

TEST_F(WrapperGeneratorTest, AFileOrALinkOfTheSameNameIsReplacedAndNotFollowed) {
    write(at("out/Work.app"), "a file");
    (void)generate(webOptions());
    EXPECT_TRUE(fs::is_directory(at("out/Work.app")));
    fs::remove_all(at("out/Work.app"));
    write(at("kept/file"), "x");
    for (const char* target : {"../kept", "dangling"}) {
        fs::create_directory_symlink(target, at("out/Work.app"));
        (void)generate(webOptions());
        EXPECT_FALSE(fs::is_symlink(at("out/Work.app")));
        fs::remove_all(at("out/Work.app"));
    }
    EXPECT_EQ(read(at("kept/file")), "x");
}

TEST_F(WrapperGeneratorTest, AHomeAtTheWrappersPathIsNotRemoved) {
    const ScopedEnvironment fixed("CFFIXED_USER_HOME", at("out/Work.app"));
    write(at("out/Work.app/precious"), "x");
    EXPECT_THROW((void)generate(webOptions()), PlatformError);
    EXPECT_EQ(read(at("out/Work.app/precious")), "x");
}

TEST_F(WrapperGeneratorTest, WithoutARunnerNothingIsWritten) {
    WrapperGenerator::Options options = webOptions();
    options.runnerBinary = at("none");
    try {
        (void)generate(options);
        FAIL() << "it was written";
    } catch (const GenError& error) {
        EXPECT_EQ(error.kind(), GenError::Case::runnerMissing);
        EXPECT_EQ(error.url(), at("none"));
        EXPECT_EQ(error.description(), "Runner binary not found: " + at("none").string());
    }
    EXPECT_FALSE(fs::exists(at("out")));
}

TEST_F(WrapperGeneratorTest, WithoutAReadableTargetNothingIsWrittenNorRemoved) {
    write(at("out/Work.app/old"), "x");
    WrapperGenerator::Options options = webOptions();
    options.config.kind = ShortcutKind::app;
    options.config.targetAppPath = "/no/such.app";
    try {
        (void)generate(options);
        FAIL() << "it was written";
    } catch (const GenError& error) {
        EXPECT_EQ(error.kind(), GenError::Case::badTarget);
        EXPECT_EQ(error.url(), "/no/such.app");
        EXPECT_EQ(error.description(), "Not a readable target .app: /no/such.app");
    }
    EXPECT_EQ(read(at("out/Work.app/old")), "x");
}

TEST_F(WrapperGeneratorTest, OtherKindsNeedNoTargetAndHaveNoIcon) {
    for (const ShortcutKind kind : {ShortcutKind::web, ShortcutKind::file, ShortcutKind::command}) {
        WrapperGenerator::Options options = webOptions();
        options.config.kind = kind;
        EXPECT_EQ(iconOf(options), "none");
    }
}

TEST_F(WrapperGeneratorTest, TheTargetsIconIsFoundWithAndWithoutItsExtension) {
    WrapperGenerator::Options options = appOptions("AppIcon");
    targetIcon("AppIcon.icns", "icon bytes");
    EXPECT_EQ(iconOf(options), "icon bytes");
    EXPECT_EQ(iconOf(appOptions("AppIcon.icns")), "icon bytes");
    targetIcon("Other.ICNS.icns", "upper");
    EXPECT_EQ(iconOf(appOptions("Other.ICNS")), "upper");
}

TEST_F(WrapperGeneratorTest, ATargetWithoutAnIconLeavesTheWrapperWithoutOne) {
    EXPECT_EQ(iconOf(appOptions("Missing")), "none");
    EXPECT_EQ(iconOf(appOptions(std::int64_t{1})), "none");
}

TEST_F(WrapperGeneratorTest, ACustomIconOfAnyFormatReplacesTheTargets) {
    WrapperGenerator::Options options = appOptions("AppIcon");
    targetIcon("AppIcon.icns", "target's");
    write(at("custom.png"), "no icon \0 at all"s);
    options.customIcon = at("custom.png");
    EXPECT_EQ(iconOf(options), "no icon \0 at all"s);
}

TEST_F(WrapperGeneratorTest, ACustomIconThatIsGoneIsReplacedByTheTargets) {
    WrapperGenerator::Options options = appOptions("AppIcon");
    targetIcon("AppIcon.icns", "target's");
    options.customIcon = at("gone");
    EXPECT_EQ(iconOf(options), "target's");
}

TEST_F(WrapperGeneratorTest, ACustomIconThatIsALinkToNothingIsReplacedByTheTargets) {
    WrapperGenerator::Options options = appOptions("AppIcon");
    targetIcon("AppIcon.icns", "target's");
    fs::create_symlink("nothing", at("dangling"));
    options.customIcon = at("dangling");
    EXPECT_EQ(iconOf(options), "target's");
    write(at("nothing"), "the link's target");
    EXPECT_EQ(iconOf(options), "the link's target");
}

TEST_F(WrapperGeneratorTest, ALabelOfSpacesCopiesTheIconUnchanged) {
    WrapperGenerator::Options options = appOptions("AppIcon");
    targetIcon("AppIcon.icns", "icon bytes");
    options.config.iconLabel = IconLabel{" \t ", "ff0000", IconLabel::Position::top};
    EXPECT_EQ(iconOf(options), "icon bytes");
}

TEST_F(WrapperGeneratorTest, ALabelOnAnInvalidIconCopiesItUnchanged) {
    WrapperGenerator::Options options = appOptions("AppIcon");
    targetIcon("AppIcon.icns", "not an icon");
    options.config.iconLabel = IconLabel{"W", "ff0000", IconLabel::Position::top};
    EXPECT_EQ(iconOf(options), "not an icon");
}

TEST_F(WrapperGeneratorTest, AnIconThatCantBeCopiedIsAnErrorAndDoesntBlock) {
    WrapperGenerator::Options options = webOptions();
    ::mkfifo(at("fifo").c_str(), 0600);
    for (const fs::path& icon : {at("fifo"), folder_.path()}) {
        options.customIcon = icon;
        EXPECT_THROW((void)generate(options), PlatformError) << icon;
        EXPECT_TRUE(fs::is_empty(at("out"))) << "nothing is left of it";
    }
}

TEST_F(WrapperGeneratorTest, AFolderThatCantBeMadeIsAnError) {
    write(at("out"), "a file");
    try {
        (void)generate(webOptions());
        ADD_FAILURE() << "it was written";
    } catch (const PlatformError& error) {
        EXPECT_THAT(error.description(), ::testing::HasSubstr("“Work.app”"));
    }
    fs::remove(at("out"));
    EXPECT_THROW((void)generate(webOptions(std::string(300, 'n'))), PlatformError);
}

TEST_F(WrapperGeneratorTest, ARunnerThatIsAFolderIsAnErrorThatLeavesNoClone) {
    WrapperGenerator::Options options = webOptions();
    options.runnerBinary = folder_.path();
    EXPECT_THROW((void)generate(options), PlatformError);
    EXPECT_FALSE(fs::exists(at("out/Work.app/Contents/Resources/instance.json")))
        << "what has one is a clone";
}

TEST_F(WrapperGeneratorTest, ABadTargetIsReportedBeforeTextThatCantBeWritten) {
    WrapperGenerator::Options options = webOptions();
    options.config.extraArgs = {"\xFF"};
    options.config.infoPlistOverrides = {{"K", "\x01"}};
    EXPECT_THROW((void)generate(options), ConfigError) << "the configuration is written first";
    options.config.kind = ShortcutKind::app;
    options.config.targetAppPath = "/no/such.app";
    EXPECT_THROW((void)generate(options), GenError);
    options.runnerBinary = at("none");
    try {
        (void)generate(options);
        FAIL() << "it was written";
    } catch (const GenError& error) {
        EXPECT_EQ(error.kind(), GenError::Case::runnerMissing);
    }
}

TEST_F(WrapperGeneratorTest, AnIconInsideTheWrapperThatIsReplacedIsGoneWithIt) {
    WrapperGenerator::Options options = appOptions("AppIcon");
    targetIcon("AppIcon.icns", "target's");
    write(at("custom"), "custom");
    options.customIcon = at("custom");
    ASSERT_EQ(iconOf(options), "custom");
    options.customIcon = at("out/Work.app/Contents/Resources/AppIcon.icns");
    EXPECT_EQ(iconOf(options), "target's");
}

TEST_F(WrapperGeneratorTest, TextThatCantBeWrittenIsAnErrorThatTheNextCallCleansUp) {
    WrapperGenerator::Options options = webOptions();
    options.config.extraArgs = {"\xFF"};
    EXPECT_THROW((void)generate(options), ConfigError);
    options = webOptions();
    options.config.infoPlistOverrides = {{"K", "\x01"}};
    EXPECT_THROW((void)generate(options), std::invalid_argument);
    EXPECT_NO_THROW((void)generate(webOptions()));
}

TEST_F(WrapperGeneratorTest, TextThatAPropertyListCantHoldLeavesTheOldWrapperAlone) {
    (void)generate(webOptions());
    write(at("out/Work\x1B.app/Contents/PkgInfo"), "older");
    const auto before = treeOf(at("out"));
    WrapperGenerator::Options key = webOptions();
    key.config.infoPlistOverrides = {{"\x01", "text"}};
    WrapperGenerator::Options text = webOptions();
    text.config.infoPlistOverrides = {{"K", "\uFFFE"}};
    WrapperGenerator::Options identifier = webOptions();
    identifier.config.bundleId = "\x1B";
    for (const auto& options : {key, text, identifier, webOptions("Work\x1B")}) {
        EXPECT_THROW((void)generate(options), std::invalid_argument);
        EXPECT_EQ(treeOf(at("out")), before);
    }
}

TEST_F(WrapperGeneratorTest, NamesArePassedThroughUnchanged) {
    EXPECT_EQ(generate(webOptions("a/b")), at("out/a/b.app"));
    EXPECT_TRUE(fs::exists(at("out/a/b.app/Contents/PkgInfo")));
    EXPECT_TRUE(fs::exists(generate(webOptions("/etc")) / "Contents/PkgInfo"));
    EXPECT_TRUE(fs::exists(at("out/etc.app")));
    for (const char* name : {"line\nbreak", "<b>\"'&", "..", " ", "é語😀"}) {
        EXPECT_TRUE(fs::exists(generate(webOptions(name)) / "Contents/Info.plist")) << name;
    }
}

TEST_F(WrapperGeneratorTest, ANameWithANulIsRefused) {
    EXPECT_THROW((void)generate(webOptions("a\0b"s)), std::invalid_argument);
    EXPECT_FALSE(fs::exists(at("out/a")));
}

TEST_F(WrapperGeneratorTest, ATextThatCantBeWrittenIsNamed) {
    const auto failure = [&](const std::function<void(InstanceConfig&)>& change) -> std::string {
        WrapperGenerator::Options options = webOptions();
        change(options.config);
        try {
            (void)generate(options);
        } catch (const std::exception& error) {
            return error.what();
        }
        return "no error";
    };
    const std::string reason = "a property list can't hold control characters";
    EXPECT_EQ(failure([](InstanceConfig& config) {
                  config.infoPlistOverrides = {{"Fine", "x"}, {"Odd", "a\x01"}};
              }),
              "The value of “Odd”: " + reason);
    EXPECT_EQ(failure([](InstanceConfig& config) {
                  config.infoPlistOverrides = {{"Odd\x01", "a"}};
              }),
              "The key “Odd\x01”: " + reason);
    EXPECT_EQ(failure([](InstanceConfig& config) { config.bundleId = "a\x01"; }),
              "The identifier: " + reason);
    EXPECT_EQ(failure([](InstanceConfig& config) { config.displayName = "a\x01"; }),
              "The name: " + reason);
    EXPECT_FALSE(fs::exists(at("out")));
}

} // namespace
} // namespace quorvel
