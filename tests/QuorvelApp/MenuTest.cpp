#include "QuorvelApp/MainWindow.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/support/TemporaryHome.h"

#include <QAction>
#include <QMenuBar>

#include <gtest/gtest.h>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

// The commands of the window's menus, by their words.
class Menus : public ::testing::Test {
protected:
    std::map<QString, QAction*> commands() {
        std::map<QString, QAction*> found;
        for (QAction* menu : window.menuBar()->actions()) {
            for (QAction* command : menu->menu()->actions()) {
                found[command->text().remove(u'&')] = command;
            }
        }
        return found;
    }

    TemporaryHome home;
    StubbedModel stubs{home / "Applications"};
    UpdaterController updater;
    IconLoader icons{std::make_shared<ThreadPoolTasks>()};
    MainWindow window{stubs.model(), updater, icons};
};

// Left to itself, macOS would guess from the words which command belongs into its own menu.
TEST_F(Menus, SayOfEveryCommandWhereMacOSIsToPutIt) {
    std::map<QString, QAction::MenuRole> roles;
    for (const auto& [text, command] : commands()) {
        roles[text] = command->menuRole();
    }
    EXPECT_EQ(roles, (std::map<QString, QAction::MenuRole>{
                         {u"Check for Updates…"_s, QAction::ApplicationSpecificRole},
                         {u"New Clone…"_s, QAction::NoRole},
                         {u"Refresh"_s, QAction::NoRole}}));
}

TEST_F(Menus, KeepTheSearchForUpdatesDisabledWithoutAFeed) {
    QAction* check = commands().at(u"Check for Updates…"_s);
    EXPECT_FALSE(check->isEnabled());
    check->trigger();
}

TEST(SystemUpdates, AreNotConfiguredOutsideAnApplicationWithAFeed) {
    EXPECT_EQ(makeSystemUpdateService(), nullptr);
    EXPECT_FALSE(UpdaterController(makeSystemUpdateService()).isConfigured());
}

} // namespace
} // namespace quorvel::testing
