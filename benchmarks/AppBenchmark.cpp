// How fast the window is, beside an empty Qt window in the same run.
//   app_benchmarks [NAME]...  runs everything, or what is named (start, sheet, grid, holds,
//                             refresh), and prints a table
// Draws on the display if there is one, otherwise offscreen. Works in a throw-away home.
#include "LaunchKit/Icons/IcnsWriter.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/NewCloneView.h"
#include "QuorvelApp/QuorvelApp.h"
#include "QuorvelApp/library/Sidebar.h"
#include "QuorvelApp/newclone/AppPicker.h"
#include "QuorvelApp/theme/Appearance.h"
#include "benchmarks/AppMeasuring.h"
#include "benchmarks/Comparison.h"
#include "benchmarks/RefreshingBenchmark.h"
#include "benchmarks/SheetBenchmark.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QPainter>
#include <QProcess>
#include <QPushButton>
#include <QScrollBar>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <utility>
#include <vector>

namespace quorvel {
namespace {

namespace fs = std::filesystem;
using namespace quorvel::benchmarks;
using namespace quorvel::testing;

double milliseconds() {
    return std::chrono::duration<double, std::milli>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double residentMegabytes() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) {
            return std::stod(line.substr(6)) / 1024;
        }
    }
    return 0;
}

void reportRatio(const char* what, double value, double floor, const char* unit, double goal) {
    print({what, value, floor, unit, decimals(value / floor, "x"), "<= " + decimals(goal, "x"),
           value <= goal * floor});
}

void makeClones(const fs::path& home, int count) {
    for (int number = 0; number < count; ++number) {
        InstanceConfig config = minimalConfig("Clone " + std::to_string(number));
        config.bundleId = WrapperFactory::defaultBundleId(config.displayName);
        makeWrapper(home / "Applications" / (config.displayName + ".app"), config);
    }
}

std::string iconBytes() {
    QImage image(512, 512, QImage::Format_ARGB32);
    QPainter painter(&image);
    painter.fillRect(image.rect(), QGradient(QGradient::PhoenixStart));
    painter.end();
    const std::array chunks{icnsChunk(image), icnsChunk(image.scaled(128, 128)),
                            icnsChunk(image.scaled(64, 64))};
    return icnsFile(chunks);
}

std::vector<InstalledApp> makeApps(const fs::path& folder, int count) {
    const std::string icon = iconBytes();
    std::vector<InstalledApp> apps;
    for (int number = 0; number < count; ++number) {
        const std::string name = "Application " + std::to_string(number);
        const fs::path app = folder / (name + ".app");
        makeScriptedAppBundle(app, "exit 0", {{"CFBundleIconFile", "AppIcon"}});
        write(app / "Contents/Resources/AppIcon.icns", icon);
        apps.push_back({.url = app, .name = name, .bundleId = "com.example." + name});
    }
    return apps;
}

/// Reports when its window is painted for the first time.
class FirstPaint : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint) {
            painted_ = true;
        }
        return QObject::eventFilter(watched, event);
    }
    [[nodiscard]] bool painted() const { return painted_; }

private:
    bool painted_ = false;
};

// A child prints when its window was painted, and its memory then.
int showPlain(bool withText) {
    QMainWindow window;
    if (withText) {
        window.setCentralWidget(new QPushButton(QStringLiteral("Button"), &window));
    }
    FirstPaint paint;
    window.installEventFilter(&paint);
    window.resize(MainWindow::initial);
    window.show();
    (void)waitUntil([&] { return paint.painted(); });
    std::printf("%f\n", milliseconds());
    (void)waitUntil([deadline = milliseconds() + 500] { return milliseconds() > deadline; });
    std::printf("%f\n", residentMegabytes());
    return 0;
}

int showApplication() {
    const Appearance appearance;
    QuorvelApp app;
    FirstPaint paint;
    app.window().installEventFilter(&paint);
    app.start();
    (void)waitUntil([&] { return paint.painted() && !app.model().clones().empty(); });
    std::printf("%f\n", milliseconds());
    app.window().content().showNewClone();
    (void)waitUntil([deadline = milliseconds() + 500] { return milliseconds() > deadline; });
    std::printf("%f\n", residentMegabytes());
    return 0;
}

struct ChildFigures {
    double start = 0;
    double memory = 0;
};

ChildFigures runChild(const QString& mode) {
    std::vector<double> starts;
    std::vector<double> memories;
    for (int round = 0; round < 9; ++round) {
        QProcess child;
        const double begun = milliseconds();
        child.start(QApplication::applicationFilePath(), {mode});
        child.waitForFinished();
        const QList<QByteArray> lines = child.readAllStandardOutput().split('\n');
        starts.push_back(lines.value(0).toDouble() - begun);
        memories.push_back(lines.value(1).toDouble());
    }
    return {median(starts), median(memories)};
}

void measureStart() {
    const TemporaryHome home;
    makeClones(home.path(), 500);
    const ChildFigures empty = runChild(QStringLiteral("empty"));
    const ChildFigures button = runChild(QStringLiteral("button"));
    const ChildFigures app = runChild(QStringLiteral("application"));
    reportRatio("first paint with 500 clones, against an empty window", app.start, empty.start,
                "ms", 1.5);
    // An empty window never loads a font, which takes longer than everything else that Qt does at
    // that point.
    reportRatio("first paint with 500 clones, against a window of one button", app.start,
                button.start, "ms", 1.5);
    reportRatio("memory with 500 clones and the sheet, against an empty window", app.memory,
                empty.memory, "MB", 2.0);
}

void measureSheet() {
    const TemporaryHome home;
    const TemporaryFolder folder;
    AppServices services = AppServices::system();
    services.scanCatalog = [apps = makeApps(folder.path(), 2000)] { return apps; };
    QuorvelApp app(std::move(services));
    app.start();
    QApplication::processEvents();

    QElapsedTimer timer;
    timer.start();
    app.window().content().showNewClone();
    double worst = static_cast<double>(timer.nsecsElapsed()) / 1e6;
    const auto frame = [&](const std::function<void()>& change) {
        timer.restart();
        change();
        QApplication::processEvents();
        worst = std::max(worst, static_cast<double>(timer.nsecsElapsed()) / 1e6);
    };
    (void)waitUntil([&] {
        frame([] {});
        return !app.model().catalogLoading();
    });
    auto* grid = app.window().findChild<AppGrid*>();
    (void)waitUntil([&] { return grid->verticalScrollBar()->maximum() > 0; });
    QScrollBar* bar = grid->verticalScrollBar();
    while (bar->value() < bar->maximum()) {
        frame([&] { bar->setValue(bar->value() + 150); });
    }
    report("sheet with 2,000 apps: longest frame, opening and scrolling", worst, "ms", 33);

    QLineEdit* search = nullptr;
    for (QLineEdit* field : app.window().findChildren<QLineEdit*>()) {
        search = field->objectName() == QLatin1String("searchText") ? field : search;
    }
    double slowest = 0;
    QString text;
    for (const QChar key : QStringLiteral("application 19")) {
        timer.restart();
        search->setText(text += key);
        QApplication::processEvents();
        slowest = std::max(slowest, static_cast<double>(timer.nsecsElapsed()) / 1e6);
    }
    report("search field with 2,000 apps: slowest key", slowest, "ms", 10);
}

void clickButton(QWidget& window, const QString& text) {
    for (QAbstractButton* button : window.findChildren<QAbstractButton*>()) {
        if (button->isVisible() && button->text().remove(u'&') == text) {
            button->click();
            return;
        }
    }
    std::fprintf(stderr, "button %s not found\n", qUtf8Printable(text));
}

// What a user does, with 500 clones and 200 apps. Launching and deleting are left out: they
// prepare and remove folders before they return, by design.
void measureHolds(MeasuringApplication& application) {
    const TemporaryHome home;
    makeClones(home.path(), 500);
    write(home / "QuorvelInstances/Clone 0/Downloads/report", "text");
    (void)makeApps(home / "Applications", 200);
    QuorvelApp app;
    QWidget& window = app.window();
    double worst = 0;
    const auto step = [&](const char* name, const std::function<void()>& action,
                          const std::function<bool()>& done) {
        (void)application.takeLongest();
        QMetaObject::invokeMethod(&app.window(), action, Qt::QueuedConnection);
        QApplication::processEvents();
        (void)waitUntil(done);
        const double longest = application.takeLongest();
        std::printf("  %-30s %8.2f ms\n", name, longest);
        worst = std::max(worst, longest);
    };
    const auto always = [] { return true; };
    AppModel& model = app.model();
    step(
        "the window appears", [&] { app.start(); }, [&] { return model.clones().size() == 500; });
    step(
        "a clone is selected",
        [&] {
            app.window().content().sidebar().select((home / "Applications/Clone 0.app").string());
        },
        always);
    step(
        "its files are shared", [&] { model.migrateSharedFolders(model.clones().front()); },
        [&] { return model.statusMessage().has_value(); });
    step(
        "the message is dismissed", [&] { clickButton(window, QStringLiteral("OK")); }, always);
    step(
        "the sheet opens", [&] { app.window().content().showNewClone(); },
        [&] { return !model.catalogLoading() && model.sandboxStatus().size() >= 10; });
    step(
        "an app is chosen",
        [&] {
            auto* grid = window.findChild<AppGrid*>();
            grid->selectionModel()->select(grid->model()->index(3, 0),
                                           QItemSelectionModel::ClearAndSelect);
        },
        always);
    step(
        "advanced options open", [&] { clickButton(window, QStringLiteral("Advanced options")); },
        always);
    for (QCheckBox* box : window.findChildren<QCheckBox*>()) {
        if (box->text().contains(QLatin1String("after creating"))) {
            box->setChecked(false);
        }
    }
    step(
        "the clone is made", [&] { clickButton(window, QStringLiteral("Create Shortcut")); },
        [&] { return model.clones().size() == 501; });
    step(
        "the list is refreshed", [&] { model.reload(); }, always);
    report("longest hold of the main thread in these", worst, "ms", 50);
}

} // namespace
} // namespace quorvel

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("DISPLAY")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    QStandardPaths::setTestModeEnabled(true);
    quorvel::benchmarks::MeasuringApplication application(argc, argv);
    const QString mode = application.arguments().value(1);
    if (mode == QLatin1String("empty")) {
        return quorvel::showPlain(false);
    }
    if (mode == QLatin1String("button")) {
        return quorvel::showPlain(true);
    }
    if (mode == QLatin1String("application")) {
        return quorvel::showApplication();
    }
    const QStringList wanted = application.arguments().mid(1);
    const QStringList known{QStringLiteral("start"), QStringLiteral("sheet"),
                            QStringLiteral("grid"), QStringLiteral("holds"),
                            QStringLiteral("refresh")};
    for (const QString& name : wanted) {
        if (!known.contains(name)) {
            qCritical("There is no measurement named %s", qUtf8Printable(name));
            return EXIT_FAILURE;
        }
    }
    const auto isWanted = [&wanted](QLatin1String name) {
        return wanted.isEmpty() || wanted.contains(name);
    };
    if (isWanted(QLatin1String("start"))) {
        quorvel::measureStart();
    }
    const quorvel::Appearance appearance;
    if (isWanted(QLatin1String("sheet"))) {
        quorvel::measureSheet();
    }
    if (isWanted(QLatin1String("grid"))) {
        quorvel::benchmarks::measureFilledGrid(application);
    }
    if (isWanted(QLatin1String("holds"))) {
        quorvel::measureHolds(application);
    }
    if (isWanted(QLatin1String("refresh"))) {
        quorvel::benchmarks::measureRefreshing(application);
    }
    return 0;
}
