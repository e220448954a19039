#include "benchmarks/SheetBenchmark.h"

#include "QuorvelApp/app/MainWindow.h"
#include "QuorvelApp/newclone/AppPicker.h"
#include "benchmarks/Comparison.h"
#include "tests/support/TemporaryHome.h"

#include <QElapsedTimer>
#include <QPainter>

#include <algorithm>
#include <cstdio>
#include <set>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;
using namespace quorvel::testing;

// An app with an icon of its own, as a desktop lists it. Every fifth has a drawing.
void makeEntry(const fs::path& share, int number) {
    const std::string name = "entry-" + std::to_string(number);
    write(share / "applications" / (name + ".desktop"),
          "[Desktop Entry]\nType=Application\nName=Application " + std::to_string(number) +
              "\nExec=/bin/true\nIcon=" + name + "\n");
    const fs::path theme = share / "icons/hicolor";
    if (number % 5 == 0) {
        write(theme / "scalable/apps" / (name + ".svg"),
              R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 64 64">)"
              R"(<rect x="4" y="4" width="56" height="56" rx="12" fill="#2e9372"/>)"
              R"(<path d="M12 44 L32 14 L52 44 Z" fill="#fff"/></svg>)");
        return;
    }
    QImage image(256, 256, QImage::Format_ARGB32);
    QPainter painter(&image);
    painter.fillRect(image.rect(), QGradient(static_cast<QGradient::Preset>(1 + number % 100)));
    painter.end();
    fs::create_directories(theme / "256x256/apps");
    image.save(QString::fromStdString((theme / "256x256/apps" / (name + ".png")).string()));
}

/// A window with a sheet, opened once.
class SheetOpening {
public:
    SheetOpening() {
        QObject::connect(&icons_, &IconLoader::loaded, &icons_,
                         [this](const fs::path& path) { loaded_.insert(path); });
        window_.show();
        QApplication::processEvents();
    }

    /// Returns the milliseconds until every icon in view is drawn.
    double open() {
        QElapsedTimer timer;
        timer.start();
        window_.content().showNewClone();
        (void)waitUntil([&] { return !model_.catalogLoading() && allDrawn(); });
        QApplication::processEvents(); // the last painting
        return static_cast<double>(timer.nsecsElapsed()) / 1e6;
    }

    [[nodiscard]] std::size_t drawn() const { return loaded_.size(); }

private:
    bool allDrawn() const {
        const auto* grid = window_.findChild<AppGrid*>();
        for (int row = 0; row < grid->model()->rowCount(); ++row) {
            const QModelIndex tile = grid->model()->index(row, 0);
            const auto icon = tile.data(AppGridModel::IconPathRole).value<fs::path>();
            if (grid->visualRect(tile).intersects(grid->viewport()->rect()) &&
                !loaded_.contains(icon)) {
                return false;
            }
        }
        return true;
    }

    AppModel model_{AppServices::system()};
    UpdaterController updater_{};
    IconLoader icons_{std::make_shared<ThreadPoolTasks>()};
    MainWindow window_{model_, updater_, icons_};
    std::set<fs::path> loaded_{};
};

// The median of several windows, after one that loads fonts and styles.
double timeOfSheets(MeasuringApplication& application, double& longest, std::size_t icons) {
    std::vector<double> times;
    for (int round = 0; round < 8; ++round) {
        SheetOpening sheet;
        (void)application.takeLongest();
        const double time = sheet.open();
        if (round > 0) {
            times.push_back(time);
            longest = std::max(longest, application.takeLongest());
        }
        if (sheet.drawn() < icons) {
            std::fprintf(stderr, "only %zu icons were drawn\n", sheet.drawn());
        }
    }
    return median(times);
}

} // namespace

void measureFilledGrid(MeasuringApplication& application) {
    const TemporaryHome home;
    const TemporaryFolder share;
    const ScopedEnvironment data("XDG_DATA_HOME", share.path().string());
    const ScopedEnvironment others("XDG_DATA_DIRS", (share / "none").string());
    double longest = 0;
    const double empty = timeOfSheets(application, longest, 0);
    for (int number = 0; number < 300; ++number) {
        makeEntry(share.path(), number);
    }
    longest = 0;
    const double filled = timeOfSheets(application, longest, 20);
    print({"opening the sheet to a grid of 300 apps with icons, against an empty one", filled,
           empty, "ms", decimals(filled - empty, "ms"), "<= 150 ms more", filled <= empty + 150});
    report("its longest frame", longest, "ms", 33);
}

} // namespace quorvel::benchmarks
