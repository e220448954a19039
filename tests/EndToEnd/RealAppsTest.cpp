// Installed applications, as a user has them: two clones first, then the application itself.
#include "tests/EndToEnd/AppTrial.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace fs = std::filesystem;
using DataFolders = OrdinarySession::DataFolders;

struct RealApp {
    const char* name;
    const char* entry;
    const char* package;
    const char* title; ///< is part of the title of its window
    const char* data;  ///< what it writes at its start, below a clone's home
};

void PrintTo(const RealApp& app, std::ostream* stream) {
    *stream << app.name;
}

constexpr RealApp firefox{"Firefox", "firefox-esr.desktop", "firefox-esr", "Mozilla Firefox",
                          "FirefoxProfile/prefs.js"};
constexpr RealApp chromium{"Chromium", "chromium.desktop", "chromium", "Chromium",
                           "QuorvelData/Local State"};
constexpr RealApp gedit{"Gedit", "org.gnome.gedit.desktop", "gedit", "gedit",
                        ".config/enchant/en_US.dic"};
constexpr RealApp calculator{"GnomeCalculator", "org.gnome.Calculator.desktop", "gnome-calculator",
                             "Calculator", ".cache/gnome-calculator"};
constexpr RealApp kcalc{"KCalc", "org.kde.kcalc.desktop", "kcalc", "KCalc",
                        ".cache/icon-cache.kcache"};
constexpr RealApp keePassXC{"KeePassXC", "org.keepassxc.KeePassXC.desktop", "keepassxc",
                            "KeePassXC", ".config/keepassxc/keepassxc.ini"};
constexpr RealApp meld{"Meld", "org.gnome.Meld.desktop", "meld", "Meld",
                       ".config/glib-2.0/settings/keyfile"};
constexpr RealApp transmission{"Transmission", "transmission-gtk.desktop", "transmission-gtk",
                               "Transmission", ".config/transmission/torrents"};

void expectOwn(const CopyReport& copy, const RealApp& app) {
    ASSERT_TRUE(copy.window.has_value()) << copy.home;
    EXPECT_FALSE(copy.window->isDialog) << copy.window->title;
    EXPECT_THAT(copy.window->title, HasSubstr(app.title)) << copy.home;
    EXPECT_THAT(copy.data, Contains(app.data)) << copy.home;
    EXPECT_TRUE(copy.hasOwnIdentity()) << "its window is not found by the clone's menu entry";
    // Browsers take the clone's word from their arguments and don't set this.
    const bool namesItself = app.package == firefox.package || app.package == chromium.package;
    EXPECT_EQ(copy.window->desktopFile, namesItself ? "" : copy.word) << copy.home;
}

// What Chromium needs beside its own arguments on this machine. Containers may forbid the
// namespaces that its sandbox is made of; a user would meet that with the original too.
std::vector<std::string> argumentsFor(const RealApp& app, OrdinarySession& session) {
    const bool forbidden = session.run({"/usr/bin/unshare", "--user", "/bin/true"}).status != 0;
    return app.package == std::string_view("chromium") && forbidden
               ? std::vector<std::string>{"--no-sandbox"}
               : std::vector<std::string>{};
}

class RealAppsTest : public ::testing::TestWithParam<std::tuple<RealApp, DataFolders>> {};

TEST_P(RealAppsTest, TwoClonesAndTheOriginalRunSideBySide) {
    const auto& [app, dataFolders] = GetParam();
    if (!fs::exists(fs::path("/usr/share/applications") / app.entry)) {
        GTEST_SKIP() << "the package " << app.package << " is not installed";
    }
    if (const auto obstacle = OrdinarySession::obstacle()) {
        GTEST_SKIP() << *obstacle;
    }
    AppTrial trial(dataFolders, app.entry);
    const AppTrialReport report = trial.run(argumentsFor(app, trial.session()));
    EXPECT_EQ(report.error, "");
    EXPECT_NE(report.name, "");
    expectOwn(report.first, app);
    expectOwn(report.second, app);
    ASSERT_TRUE(report.original.window.has_value());
    EXPECT_NE(report.first.window->process, report.second.window->process);
    EXPECT_THAT(report.writtenOutside, IsEmpty());
    EXPECT_FALSE(report.settingsChanged);
    EXPECT_THAT(report.left, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(
    , RealAppsTest,
    ::testing::Combine(::testing::Values(firefox, chromium, gedit, calculator, kcalc, keePassXC,
                                         meld, transmission),
                       ::testing::Values(DataFolders::Usual, DataFolders::Elsewhere)),
    [](const auto& tested) {
        return std::string(std::get<0>(tested.param).name) +
               (std::get<1>(tested.param) == DataFolders::Usual ? "" : "WithXdgFolders");
    });

} // namespace
} // namespace quorvel
