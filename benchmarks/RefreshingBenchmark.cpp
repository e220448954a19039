#include "benchmarks/RefreshingBenchmark.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/QuorvelApp.h"
#include "benchmarks/StaleClones.h"
#include "tests/support/TemporaryHome.h"

#include <QAction>
#include <QMenu>

#include <stdexcept>

namespace quorvel::benchmarks {
namespace {

QAction& commandNamed(const QWidget& window, const QString& name) {
    for (const QMenu* menu : window.findChildren<QMenu*>()) {
        for (QAction* action : menu->actions()) {
            if (action->text().remove(u'&') == name) {
                return *action;
            }
        }
    }
    throw std::runtime_error("there is no such command");
}

} // namespace

void measureRefreshing(MeasuringApplication& application) {
    constexpr int clones = 1000;
    constexpr double goal = 33;
    const testing::TemporaryHome home;
    makeClones(home.path(), clones);
    makeStale();
    QuorvelApp app;
    app.start();
    if (!waitUntil([&] { return app.model().clones().size() == std::size_t{clones}; })) {
        throw std::runtime_error("the clones are not listed");
    }
    QAction& command = commandNamed(app.window(), QStringLiteral("Refresh Wrappers"));
    (void)application.takeLongest();
    QMetaObject::invokeMethod(
        &app.window(), [&] { command.trigger(); }, Qt::QueuedConnection);
    while (!app.model().statusMessage() && !app.model().lastError()) {
        QApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    if (app.model().lastError()) {
        throw std::runtime_error(*app.model().lastError());
    }
    report("refresh of 1,000 clones: longest hold of the window", application.takeLongest(), "ms",
           goal);
}

} // namespace quorvel::benchmarks
