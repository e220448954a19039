#include "Base/BundleLayout.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(BundleLayoutTest, EveryPartIsBelowContents) {
    EXPECT_EQ(contentsOf("/A/B.app"), "/A/B.app/Contents");
    EXPECT_EQ(infoPlistOf("/A/B.app"), "/A/B.app/Contents/Info.plist");
    EXPECT_EQ(executablesOf("/A/B.app"), "/A/B.app/Contents/MacOS");
    EXPECT_EQ(executableOf("/A/B.app", "x"), "/A/B.app/Contents/MacOS/x");
    EXPECT_EQ(resourcesOf("/A/B.app"), "/A/B.app/Contents/Resources");
    EXPECT_EQ(resourceOf("/A/B.app", "x.icns"), "/A/B.app/Contents/Resources/x.icns");
    EXPECT_EQ(frameworksOf("/A/B.app"), "/A/B.app/Contents/Frameworks");
    EXPECT_EQ(helpersOf("/A/B.app"), "/A/B.app/Contents/Helpers");
}

TEST(BundleLayoutTest, NamesAreJoinedAsText) {
    EXPECT_EQ(infoPlistOf("B.app"), "B.app/Contents/Info.plist");
    EXPECT_EQ(infoPlistOf("/A/B.app/"), "/A/B.app/Contents/Info.plist");
    EXPECT_EQ(executableOf("/A/B.app", "/bin/sh"), "/A/B.app/Contents/MacOS//bin/sh");
    EXPECT_EQ(executableOf("/A/B.app", ""), "/A/B.app/Contents/MacOS/");
}

TEST(BundleLayoutTest, AnExecutableBelongsToTheInnermostBundle) {
    EXPECT_EQ(bundleOfExecutable("/A/B.app/Contents/MacOS/x"), "/A/B.app");
    EXPECT_EQ(bundleOfExecutable("/A/B.app/Contents/C.app/Contents/MacOS/x"),
              "/A/B.app/Contents/C.app");
    for (const char* path :
         {"/A/B.app/Contents/MacOS/", "/A/B.app/Contents/MacOS/x/y",
          "/A/B.app/Contents/Resources/x", "/A/B/Contents/MacOS/x", "/bin/sh", ""}) {
        EXPECT_EQ(bundleOfExecutable(path), "") << path;
    }
}

TEST(BundleLayoutTest, AnExecutableThatWasReplacedBelongsToWhatTookItsPlace) {
    EXPECT_EQ(bundleOfExecutable("/A/.quorvel-change-1/B.app/Contents/MacOS/x (deleted)"),
              "/A/B.app");
    EXPECT_EQ(bundleOfExecutable("/A/quorvel-change-1/B.app/Contents/MacOS/x"),
              "/A/quorvel-change-1/B.app");
    EXPECT_EQ(bundleOfExecutable("/B.app/Contents/MacOS/x"), "/B.app");
}

} // namespace
} // namespace quorvel
