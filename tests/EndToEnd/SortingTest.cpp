// The order of names in the user's locale.
#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;

class SortingTest : public ::testing::Test {
protected:
    SortingTest() {
        for (const char* name : {"Zebra", "Öl", "ål", "aal", "apa"}) {
            const std::string file = std::string(name) + ".app";
            makeWrapper(quorvelctl_.home / "Applications" / file, name);
            makeAppBundle(quorvelctl_.home / "Programs" / file,
                          {{"CFBundleIdentifier", "com.example." + std::string(name)}});
        }
    }

    std::vector<std::string> clonesIn(const std::string& locale) {
        quorvelctl_.environment["LC_ALL"] = locale;
        std::vector<std::string> names;
        for (const auto& clone : quorvelctl_.json({"list"})) {
            names.push_back(clone["config"]["displayName"]);
        }
        return names;
    }

    std::vector<std::string> appsIn(const std::string& locale) {
        quorvelctl_.environment["LC_ALL"] = locale;
        std::vector<std::string> names;
        for (const auto& app :
             quorvelctl_.json({"apps", "--search-dir", (quorvelctl_.home / "Programs").string()})) {
            names.push_back(app["name"]);
        }
        return names;
    }

    QuorvelctlInAHome quorvelctl_;
};

TEST_F(SortingTest, ClonesAreInTheOrderOfTheUsersLocale) {
    EXPECT_THAT(clonesIn("en_US.UTF-8"), ElementsAre("aal", "ål", "apa", "Öl", "Zebra"));
    EXPECT_THAT(clonesIn("sv_SE.UTF-8"), ElementsAre("aal", "apa", "Zebra", "ål", "Öl"));
}

TEST_F(SortingTest, AppsAreInTheOrderOfTheUsersLocale) {
    EXPECT_THAT(appsIn("en_US.UTF-8"), ElementsAre("aal", "ål", "apa", "Öl", "Zebra"));
    EXPECT_THAT(appsIn("sv_SE.UTF-8"), ElementsAre("aal", "apa", "Zebra", "ål", "Öl"));
}

} // namespace
} // namespace quorvel
