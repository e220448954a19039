#include "Base/BundleName.h"

#include <gtest/gtest.h>

namespace quorvel {
namespace {

TEST(BundleNameTest, ABundleWithoutAnIdentifierIsNamedAfterItsFolder) {
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

TEST(BundleNameTest, OnlyTheExtensionInLowerCaseMakesABundle) {
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
