#include "benchmarks/Comparison.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace quorvel::benchmarks {

double secondsOf(const std::function<void()>& call) {
    const auto start = std::chrono::steady_clock::now();
    call();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double percentile(std::vector<double> values, double share) {
    std::sort(values.begin(), values.end());
    const double place = std::ceil(share * static_cast<double>(values.size()));
    return values.at(
        std::min(values.size() - 1, static_cast<std::size_t>(std::max(place - 1, 0.0))));
}

std::string decimals(double value, const std::string& unit) {
    char text[64];
    std::snprintf(text, sizeof text, "%.2f %s", value, unit.c_str());
    return text;
}

Row compareTimes(const std::string& what, const std::function<void()>& figure,
                 const std::function<void()>& floor, double goal, int rounds) {
    std::vector<double> figures;
    std::vector<double> floors;
    for (int round = -1; round < rounds; ++round) {
        const double one = secondsOf(floor);
        const double other = secondsOf(figure);
        if (round >= 0) {
            floors.push_back(one);
            figures.push_back(other);
        }
    }
    constexpr double milliseconds = 1000;
    const double cost = percentile(figures, 0.5);
    const double least = percentile(floors, 0.5);
    return {what,
            cost * milliseconds,
            least * milliseconds,
            "ms",
            decimals(cost / least, "x"),
            "<= " + decimals(goal, "x"),
            cost <= goal * least};
}

void print(const Row& row) {
    std::printf("%-62s %14s %14s %13s %14s  %s\n", row.what.c_str(),
                decimals(row.figure, row.unit).c_str(), decimals(row.floor, row.unit).c_str(),
                row.result.c_str(), row.goal.c_str(), row.met ? "met" : "MISSED");
}

void print(const std::vector<Row>& rows) {
    std::printf("%-62s %14s %14s %13s %14s\n", "", "figure", "floor", "result", "goal");
    for (const Row& row : rows) {
        print(row);
    }
}

} // namespace quorvel::benchmarks
