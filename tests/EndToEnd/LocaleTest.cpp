// The built program, for users whose settings are odd.
#include "tests/Packaging/Commands.h"
#include "tests/support/AppBundles.h"

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

TEST(LocaleTest, AnInvalidLocaleChangesNothing) {
    const TemporaryHome home;
    makeWrapper(home / "Applications/b.app", "beta");
    makeWrapper(home / "Applications/a.app", "Alpha");
    for (const char* odd : {"englishlanguage", "xx_YY.UTF-8", "@@", ""}) {
        const Outcome listing =
            outcomeOf({QUORVEL_CTL, "list"}, Environment{{"CFFIXED_USER_HOME", home.path()},
                                                         {"PATH", "/usr/bin:/bin"},
                                                         {"LANG", odd}});
        EXPECT_EQ(listing.status, 0) << odd << ": " << listing.output;
        EXPECT_LT(listing.output.find("Alpha"), listing.output.find("beta")) << odd;
    }
}

} // namespace
} // namespace quorvel::testing
