#include "LaunchKit/Icons/IcnsFile.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/WrapperGenerator.h"
#include "Platform/files/PlatformError.h"
#include "tests/support/AppBundles.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <sys/resource.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;

class WrapperIconTest : public ::testing::Test {
protected:
    WrapperIconTest() {
        write(folder_ / "runner", "#!/bin/sh\n");
        options_.runnerBinary = folder_ / "runner";
        options_.config = minimalConfig();
        options_.config.kind = ShortcutKind::web;
        write(folder_ / "custom.icns", plain_);
    }

    void cloneAnAppWithIcon() {
        const fs::path app =
            makeAppBundle(folder_ / "Target.app", {{"CFBundleIconFile", std::string("Target")}});
        write(app / "Contents/Resources/Target.icns", plain_);
        options_.config.kind = ShortcutKind::app;
        options_.config.targetAppPath = app.string();
    }

    void label(std::string text) {
        options_.config.iconLabel = IconLabel{std::move(text), "#FFFFFF", IconLabel::Position::top};
    }

    fs::path generatedIcon() {
        const fs::path wrapper = WrapperGenerator().generate(folder_ / "out", options_);
        return wrapper / "Contents/Resources/AppIcon.icns";
    }

    TemporaryFolder folder_;
    std::string plain_ = icnsOf({icnsEntry("ic07", pngOf(chatIcon(128)))});
    WrapperGenerator::Options options_;
};

TEST_F(WrapperIconTest, IsTheTargetsOwnWithoutALabel) {
    cloneAnAppWithIcon();
    EXPECT_EQ(read(generatedIcon()), plain_);
}

TEST_F(WrapperIconTest, IsBadgedWithALabel) {
    cloneAnAppWithIcon();
    label("Work");
    const auto icon = IcnsFile::read(generatedIcon());
    ASSERT_TRUE(icon);
    EXPECT_EQ(icon->entries().size(), 7U);
}

TEST_F(WrapperIconTest, IsTheCustomOneBadgedWithALabel) {
    cloneAnAppWithIcon();
    label("Work");
    const std::string badgedTarget = read(generatedIcon());
    write(folder_ / "custom.icns", icnsOf({icnsEntry("ic07", pngOf(planetIcon(128)))}));
    options_.customIcon = folder_ / "custom.icns";
    const std::string badgedCustom = read(generatedIcon());
    ASSERT_TRUE(IcnsFile::parse(badgedCustom));
    EXPECT_EQ(IcnsFile::parse(badgedCustom)->entries().size(), 7U);
    EXPECT_NE(badgedCustom, badgedTarget);
}

TEST_F(WrapperIconTest, IsAPlainCopyForALabelOfSpacesAndTabs) {
    options_.customIcon = folder_ / "custom.icns";
    for (const char* text : {"", " ", "\t \t", "\u00A0"}) {
        label(text);
        EXPECT_EQ(read(generatedIcon()), plain_);
    }
}

TEST_F(WrapperIconTest, IsRedrawnForALabelOfLineBreaks) {
    options_.customIcon = folder_ / "custom.icns";
    label("\n");
    EXPECT_EQ(IcnsFile::read(generatedIcon())->entries().size(), 7U);
}

TEST_F(WrapperIconTest, IsAPlainCopyWhenDrawingFails) {
    write(folder_ / "custom.icns", "no image at all");
    options_.customIcon = folder_ / "custom.icns";
    label("Work");
    EXPECT_EQ(read(generatedIcon()), "no image at all");
}

TEST_F(WrapperIconTest, IsMissingWithoutASourceEvenWithALabel) {
    label("Work");
    const fs::path icon = generatedIcon();
    EXPECT_FALSE(fs::exists(icon));
    EXPECT_EQ(read(icon.parent_path().parent_path() / "Info.plist").find("CFBundleIconFile"),
              std::string::npos);
}

// Files of more than 16 KiB can't be written while one of these lives.
class SmallFiles {
public:
    SmallFiles() {
        ::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit small{16384, old_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    SmallFiles(const SmallFiles&) = delete;
    SmallFiles& operator=(const SmallFiles&) = delete;
    ~SmallFiles() { ::setrlimit(RLIMIT_FSIZE, &old_); }

private:
    rlimit old_{};
};

TEST_F(WrapperIconTest, IsAPlainCopyIfThereIsNoSpaceForTheDrawnOne) {
    options_.customIcon = folder_ / "custom.icns";
    label("Work");
    ASSERT_LT(plain_.size(), 16384U);
    const SmallFiles limit;
    EXPECT_EQ(read(generatedIcon()), plain_);
}

TEST_F(WrapperIconTest, IfThereIsNoSpaceForEitherTheErrorSaysSo) {
    write(folder_ / "custom.icns", plain_ + std::string(20000, 'x'));
    options_.customIcon = folder_ / "custom.icns";
    label("Work");
    std::error_code code;
    {
        const SmallFiles limit;
        try {
            (void)generatedIcon();
        } catch (const PlatformError& error) {
            code = error.code();
        }
    }
    EXPECT_EQ(code, std::errc::file_too_large);
    const fs::path contents = folder_ / "out/Work.app/Contents";
    EXPECT_FALSE(fs::exists(contents / "Resources/AppIcon.icns"));
    EXPECT_FALSE(fs::exists(contents / "Info.plist")) << "the rest is not written";
}

} // namespace
} // namespace quorvel::testing
