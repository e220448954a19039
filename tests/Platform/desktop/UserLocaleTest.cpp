#include "Platform/desktop/UserLocale.h"

#include "Base/Text.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using ::testing::ElementsAre;
using testing::ScopedEnvironment;

using Places = std::vector<std::size_t>;

Places usersOrder(const std::vector<std::string_view>& names) {
    return Text::sortedOrder(names, UserLocale::forOrder());
}

bool usersTextContains(std::string_view text, std::string_view part) {
    return Text::containsIgnoringCase(text, part, UserLocale::forCase());
}

class UserLocaleTest : public ::testing::Test {
protected:
    const ScopedEnvironment all_{"LC_ALL", ""};
    const ScopedEnvironment collate_{"LC_COLLATE", ""};
    const ScopedEnvironment case_{"LC_CTYPE", ""};
    const ScopedEnvironment lang_{"LANG", ""};
};

TEST_F(UserLocaleTest, TheFirstVariableThatIsSetDecides) {
    EXPECT_EQ(UserLocale::forOrder(), "");
    const ScopedEnvironment lang("LANG", "fr_FR.UTF-8");
    EXPECT_EQ(UserLocale::forOrder(), "fr_FR.UTF-8");
    EXPECT_EQ(UserLocale::forCase(), "fr_FR.UTF-8");
    const ScopedEnvironment collate("LC_COLLATE", "sv_SE");
    const ScopedEnvironment ctype("LC_CTYPE", "tr_TR");
    EXPECT_EQ(UserLocale::forOrder(), "sv_SE");
    EXPECT_EQ(UserLocale::forCase(), "tr_TR");
    const ScopedEnvironment all("LC_ALL", "de_DE");
    EXPECT_EQ(UserLocale::forOrder(), "de_DE");
    EXPECT_EQ(UserLocale::forCase(), "de_DE");
}

TEST_F(UserLocaleTest, TheCLocaleIsNotALanguage) {
    for (const char* none : {"C", "POSIX", "C.UTF-8"}) {
        const ScopedEnvironment lang("LANG", "sv_SE.UTF-8");
        const ScopedEnvironment all("LC_ALL", none);
        EXPECT_EQ(UserLocale::forOrder(), "") << none;
    }
}

TEST_F(UserLocaleTest, NamesAreOrderedByTheUsersLanguage) {
    const ScopedEnvironment lang("LANG", "en_US.UTF-8");
    EXPECT_THAT(usersOrder({"zebra", "öl"}), ElementsAre(1, 0));
    const ScopedEnvironment collate("LC_COLLATE", "sv_SE.UTF-8");
    EXPECT_THAT(usersOrder({"öl", "zebra"}), ElementsAre(1, 0));
}

TEST_F(UserLocaleTest, AnUnknownLocaleUsesTheRootOrder) {
    for (const std::string odd :
         {"englishlanguage", "xx_YY", "en_US@@@", "%s%n", "../../etc", "_", "@", "\xff\xfe"}) {
        const ScopedEnvironment lang("LANG", odd);
        EXPECT_THAT(usersOrder({"öl", "zebra", "Alpha"}), ElementsAre(2, 0, 1)) << odd;
        EXPECT_TRUE(usersTextContains("Öl", "öl")) << odd;
    }
    const ScopedEnvironment lang("LANG", std::string(10'000, 'x'));
    EXPECT_THAT(usersOrder({"öl", "zebra", "Alpha"}), ElementsAre(2, 0, 1));
}

TEST_F(UserLocaleTest, LettersAreComparedByTheUsersLanguage) {
    EXPECT_TRUE(usersTextContains("TITLE", "title"));
    EXPECT_FALSE(usersTextContains("DIYAR", "dıyar"));
    const ScopedEnvironment lang("LANG", "tr_TR.UTF-8");
    EXPECT_FALSE(usersTextContains("TITLE", "title"));
    EXPECT_TRUE(usersTextContains("DIYAR", "dıyar"));
    EXPECT_TRUE(usersTextContains("İstanbul", "istan"));
}

} // namespace
} // namespace quorvel
