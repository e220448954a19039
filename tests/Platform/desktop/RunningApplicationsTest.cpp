#include "Platform/desktop/Workspace.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

RunningApplications someApplications() {
    return RunningApplications(
        {{"com.b", "/B.app", 30}, {"com.a", "/A.app", 20}, {"com.b", "/B.app", 10}});
}

TEST(RunningApplicationsTest, StandInTheOrderOfTheirProcessNumbers) {
    const RunningApplications applications = someApplications();
    ASSERT_EQ(applications.all().size(), 3U);
    EXPECT_EQ(applications.all()[0].pid, 10);
    EXPECT_EQ(applications.all()[1].pid, 20);
    EXPECT_EQ(applications.all()[2].pid, 30);
}

TEST(RunningApplicationsTest, AreFoundByTheirIdentifier) {
    const auto found = someApplications().withBundleIdentifier("com.b");
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].pid, 10);
    EXPECT_EQ(found[1].pid, 30);
}

TEST(RunningApplicationsTest, AnIdentifierIsMatchedExactly) {
    EXPECT_TRUE(someApplications().contains("com.a"));
    EXPECT_FALSE(someApplications().contains("com.A"));
    EXPECT_FALSE(someApplications().contains("com"));
    EXPECT_FALSE(RunningApplications().contains(""));
}

TEST(RunningApplicationsTest, ABundleWithoutAnIdentifierGoesByItsFoldersName) {
    EXPECT_EQ(bundleFallbackName("/A/Foo.app"), "Foo");
    EXPECT_EQ(bundleFallbackName("/A/Foo.app/"), "Foo");
    EXPECT_EQ(bundleFallbackName("/A/My.Foo.app"), "My.Foo");
    EXPECT_EQ(bundleFallbackName("/A/Foo"), "Foo");
    for (const char* path : {"Foo.app", "/A/.app", "/A/..app", "/A/..", ".", "/", "", "/A.b/Foo",
                             "/A/Foo.", "/A/.hidden.app", "/A/Foo.app/Contents"}) {
        EXPECT_EQ(bundleFallbackName(path), std::filesystem::path(path).stem()) << path;
    }
    EXPECT_EQ(bundleFallbackName("/A/Foo.app///"), "Foo");
    EXPECT_EQ(bundleFallbackName("//"), "");
}

TEST(RunningApplicationsTest, BundleNamesOnlyTheExtensionInLowerCaseMakesABundle) {
    for (const char* name : {"a.app", ".hidden.app", "a.b.app", "..app", " .app", "line\n.app"}) {
        EXPECT_TRUE(isAppBundleName(name)) << name;
        EXPECT_EQ(std::filesystem::path(name).extension(), ".app") << name;
    }
    for (const char* name :
         {".app", "app", "", "a.APP", "a.app.bak", "a.app ", "aapp", ".", ".."}) {
        EXPECT_FALSE(isAppBundleName(name)) << name;
        EXPECT_NE(std::filesystem::path(name).extension(), ".app") << name;
    }
}

} // namespace
} // namespace quorvel
