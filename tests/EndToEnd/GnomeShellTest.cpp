// Clones of an installed application in a GNOME session on Wayland, which has no screen.
#include "tests/Packaging/Commands.h"

#include <nlohmann/json.hpp>

#include <gmock/gmock.h>

#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;

constexpr int notPossibleHere =
    77; // the exit status that says so, for want of a program or a right

// What the shell says about a window.
std::string shown(const nlohmann::json& window, const char* key) {
    return window.is_object() && window[key].is_string() ? window[key].get<std::string>() : "";
}

TEST(GnomeShellTest, ShowsTwoClonesAndTheOriginalUnderTheirOwnEntries) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can become another user";
    }
    const Outcome trial =
        outcomeOf({"/usr/bin/timeout", "-k", "30", "200", "/usr/bin/python3", QUORVEL_DESKTOP_TRIAL,
                   QUORVEL_BUILD, "gnome", "gedit", "--without-focus"});
    if (trial.status == notPossibleHere) {
        GTEST_SKIP() << trial.output;
    }
    ASSERT_EQ(trial.status, 0) << trial.output;
    const std::size_t line = trial.output.find("{\""); // libraries may warn before it
    ASSERT_NE(line, std::string::npos) << trial.output;
    const nlohmann::json report =
        nlohmann::json::parse(trial.output.substr(line, trial.output.find('\n', line) - line));
    const nlohmann::json& windows = report["windows"];
    ASSERT_EQ(windows.size(), 3U) << report;
    EXPECT_EQ(shown(windows[0], "name"), "gedit Work");
    EXPECT_EQ(shown(windows[1], "name"), "gedit Home");
    EXPECT_EQ(shown(windows[2], "entry"), "org.gnome.gedit.desktop");
    for (const nlohmann::json& clone : report["clones"]) {
        EXPECT_EQ(clone, (nlohmann::json{
                             {"window", true}, {"entry", true}, {"name", true}, {"icon", true}}))
            << report;
    }
}

} // namespace
} // namespace quorvel
