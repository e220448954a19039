#pragma once

#include <QApplication>

#include <functional>
#include <vector>

/// What the measurements of the window share.
namespace quorvel::benchmarks {

/// Returns the middle one of the values, of which there must be one.
[[nodiscard]] double median(std::vector<double> values);

/// Prints a row: a value that must not exceed the goal.
void report(const char* what, double value, const char* unit, double goal);

/// Handles events until the condition holds, for a minute at most. Returns whether it does.
bool waitUntil(const std::function<bool()>& holds);

/// Measures the longest time that the main thread was busy with one event.
class MeasuringApplication : public QApplication {
public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;

    /// Returns that time since the last call, in milliseconds.
    double takeLongest();

private:
    bool busy_ = false;
    double longest_ = 0;
};

} // namespace quorvel::benchmarks
