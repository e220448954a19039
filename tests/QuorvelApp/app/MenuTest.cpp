#include "QuorvelApp/QuorvelApp.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QAction>
#include <QLabel>
#include <QTest>
#include <QTimer>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

class MenuTest : public WindowTest {};

// Left to itself, macOS would guess from the words which command belongs in its own menu.
TEST_F(MenuTest, SayWhereMacOSPutsEachCommand) {
    open();
    EXPECT_EQ(command(u"Check for Updates…"_s)->menuRole(), QAction::ApplicationSpecificRole);
    EXPECT_EQ(command(u"New Clone…"_s)->menuRole(), QAction::NoRole);
    EXPECT_EQ(command(u"Refresh"_s)->menuRole(), QAction::NoRole);
    EXPECT_EQ(command(u"Close"_s)->menuRole(), QAction::NoRole);
    EXPECT_EQ(command(u"Quit"_s)->menuRole(), QAction::QuitRole);
    EXPECT_EQ(command(u"Copy"_s)->menuRole(), QAction::NoRole);
}

TEST_F(MenuTest, DescribeTheProgramInAPanelThatEscapeCloses) {
    const QString before = QCoreApplication::applicationVersion();
    QCoreApplication::setApplicationVersion(u"9.8.7"_s);
    open();
    QAction* about = command(u"About Quorvel"_s);
    EXPECT_EQ(about->menuRole(), QAction::AboutRole);
    for (int time = 0; time < 2; ++time) {
        about->trigger();
        about->trigger(); // the menu stays within reach
        const auto shownPanels = window->findChildren<MessageSheet*>();
        ASSERT_EQ(shownPanels.size(), 1);
        EXPECT_EQ(shownPanels.front()->title(), u"Quorvel"_s);
        EXPECT_TRUE(shownPanels.front()->text().startsWith(u"Version 9.8.7\n"_s));
        for (const QLabel* label : shownPanels.front()->findChildren<QLabel*>()) {
            EXPECT_EQ(label->textFormat(), Qt::PlainText);
        }
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        EXPECT_TRUE(eventually([&] { return window->findChildren<MessageSheet*>().isEmpty(); }));
    }
    QCoreApplication::setApplicationVersion(before);
}

TEST_F(MenuTest, CloseTheWindowWithItsKey) {
    open();
    QTest::keyClick(window.get(), Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(MenuTest, QuitWithItsKey) {
    open();
    bool quitting = false;
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, window.get(), [&] { quitting = true; });
    QTimer::singleShot(0, window.get(),
                       [this] { QTest::keyClick(window.get(), Qt::Key_Q, Qt::ControlModifier); });
    QTimer::singleShot(20'000, window.get(), [] { QCoreApplication::exit(1); });
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(quitting);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(MenuTest, KeepTheSearchForUpdatesDisabledWithoutAFeed) {
    open();
    QAction* check = command(u"Check for Updates…"_s);
    EXPECT_FALSE(check->isEnabled());
    check->trigger();
}

TEST_F(MenuTest, CheckForUpdatesAsSoonAndAsLongAsTheServiceCan) {
    auto service = std::make_unique<StubUpdates>();
    StubUpdates& updates = *service;
    UpdaterController configured(std::move(service));
    window = std::make_unique<MainWindow>(stubs.model(), configured, icons, panels);
    QAction* check = command(u"Check for Updates…"_s);
    EXPECT_TRUE(check->isEnabled());
    check->trigger();
    EXPECT_EQ(updates.checks, 1);
    updates.canCheckChanged(false);
    EXPECT_FALSE(check->isEnabled());
    check->trigger();
    EXPECT_EQ(updates.checks, 1);
    updates.canCheckChanged(true);
    EXPECT_TRUE(check->isEnabled());
    window.reset(); // before the controller
}

TEST_F(MenuTest, BelongToAWindowThatComesToTheFrontAtTheStart) {
    AppServices services = AppServices::system();
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

TEST_F(MenuTest, SystemUpdatesAreNotConfiguredOutsideAnApplicationWithAFeed) {
    EXPECT_EQ(makeSystemUpdateService(), nullptr);
    EXPECT_FALSE(UpdaterController(makeSystemUpdateService()).isConfigured());
}

} // namespace
} // namespace quorvel::testing
