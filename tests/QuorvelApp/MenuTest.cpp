#include "QuorvelApp/QuorvelApp.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QAction>
#include <QTest>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

class Menus : public WindowTest {};

// Left to itself, macOS would guess from the words which command belongs into its own menu.
TEST_F(Menus, SayOfEveryCommandWhereMacOSIsToPutIt) {
    open();
    EXPECT_EQ(command(u"Check for Updates…"_s)->menuRole(), QAction::ApplicationSpecificRole);
    EXPECT_EQ(command(u"New Clone…"_s)->menuRole(), QAction::NoRole);
    EXPECT_EQ(command(u"Refresh"_s)->menuRole(), QAction::NoRole);
}

TEST_F(Menus, KeepTheSearchForUpdatesDisabledWithoutAFeed) {
    open();
    QAction* check = command(u"Check for Updates…"_s);
    EXPECT_FALSE(check->isEnabled());
    check->trigger();
}

TEST_F(Menus, CheckForUpdatesAsSoonAndAsLongAsTheServiceCan) {
    auto service = std::make_unique<StubUpdates>();
    StubUpdates& updates = *service;
    UpdaterController configured(std::move(service));
    window = std::make_unique<MainWindow>(stubs.model(), configured, icons, panels);
    QAction* check = command(u"Check for Updates…"_s);
    EXPECT_TRUE(check->isEnabled());
    check->trigger();
    EXPECT_EQ(updates.checks, 1);
    updates.tell(false);
    EXPECT_FALSE(check->isEnabled());
    check->trigger();
    EXPECT_EQ(updates.checks, 1);
    updates.tell(true);
    EXPECT_TRUE(check->isEnabled());
    window.reset(); // before the controller
}

TEST_F(Menus, BelongToAWindowThatComesToTheFrontAtTheStart) {
    AppServices services = AppServices::ofTheSystem();
    services.registry = InstanceRegistry({folder});
    services.workspace = stubs.workspace;
    QuorvelApp application(std::move(services));
    EXPECT_FALSE(application.window().isVisible());
    application.window().show(); // which alone would bring it to the front here
    QWidget other;
    other.show();
    other.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&other));
    application.start();
    EXPECT_TRUE(QTest::qWaitForWindowActive(&application.window()));
    EXPECT_EQ(QApplication::activeWindow(), &application.window());
}

TEST(SystemUpdates, AreNotConfiguredOutsideAnApplicationWithAFeed) {
    EXPECT_EQ(makeSystemUpdateService(), nullptr);
    EXPECT_FALSE(UpdaterController(makeSystemUpdateService()).isConfigured());
}

} // namespace
} // namespace quorvel::testing
