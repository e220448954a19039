#include "benchmarks/AppMeasuring.h"

#include "benchmarks/Comparison.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace quorvel::benchmarks {

double median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

void report(const char* what, double value, const char* unit, double goal) {
    print(
        {what, value, 0, unit, decimals(value, unit), "<= " + decimals(goal, unit), value <= goal});
}

bool waitUntil(const std::function<bool()>& holds) {
    QElapsedTimer timer;
    timer.start();
    while (!holds() && timer.elapsed() < 60000) {
        QApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return holds();
}

bool MeasuringApplication::notify(QObject* receiver, QEvent* event) {
    if (std::exchange(busy_, true)) {
        return QApplication::notify(receiver, event);
    }
    QElapsedTimer timer;
    timer.start();
    const bool handled = QApplication::notify(receiver, event);
    longest_ = std::max(longest_, static_cast<double>(timer.nsecsElapsed()) / 1e6);
    busy_ = false;
    return handled;
}

double MeasuringApplication::takeLongest() {
    return std::exchange(longest_, 0);
}

} // namespace quorvel::benchmarks
