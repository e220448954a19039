#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quorvel::benchmarks {

/// One line of the table.
struct Row {
    std::string what;
    double figure = 0;  ///< in `unit`
    double floor = 0;   ///< in `unit`
    std::string unit;   ///< "ms", "MiB", ...
    std::string result; ///< the figure against the floor, such as "1.32 x"
    std::string goal;   ///< such as "<= 2 x"
    bool met = false;
};

/// Runs both in turn, `rounds` times each after one round to warm up, and compares their median
/// times. The goal is `figure <= goal * floor`.
[[nodiscard]] Row compareTimes(const std::string& what, const std::function<void()>& figure,
                               const std::function<void()>& floor, double goal, int rounds);

/// Returns the seconds that one call takes.
[[nodiscard]] double secondsOf(const std::function<void()>& call);

/// Returns the value that `share` (0 to 1) of the values do not exceed; there must be a value.
[[nodiscard]] double percentile(std::vector<double> values, double share);

/// Returns a text such as "1.32 x", with two decimals.
[[nodiscard]] std::string decimals(double value, const std::string& unit);

/// Prints one line, in the table's columns.
void print(const Row& row);

/// Prints the table, with its heading.
void print(const std::vector<Row>& rows);

} // namespace quorvel::benchmarks
