// web_benchmarks: what a web clone's window costs, beside a bare window of the same engine and
// Chromium's window for one site, each in turn in the session of an ordinary user.
#include "benchmarks/Comparison.h"
#include "benchmarks/WebSession.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <thread>

namespace quorvel::benchmarks {
namespace {

using namespace std::chrono_literals;

constexpr int rounds = 9;
constexpr int crashes = 3; // after that, a page that crashes is not loaded by itself
constexpr double milliseconds = 1000;

struct Costs {
    std::vector<double> painted{};
    std::vector<double> memory{};
    std::vector<double> ended{};
    std::vector<double> killed{};
};

double median(const std::vector<double>& values) {
    return percentile(values, 0.5);
}

void measure(WebSession& session, const std::vector<std::string>& command, Costs& costs) {
    costs.painted.push_back(session.show(command) * milliseconds);
    std::this_thread::sleep_for(3s); // until it rests
    costs.memory.push_back(session.memory());
    costs.ended.push_back(session.end(SIGTERM) * milliseconds);
}

void measureKilled(WebSession& session, const std::vector<std::string>& command, Costs& costs) {
    (void)session.show(command);
    costs.killed.push_back(session.end(SIGKILL) * milliseconds);
}

Row rowAgainst(const std::string& what, const std::vector<double>& figures,
               const std::vector<double>& floors, const std::string& unit, double goal) {
    const double figure = median(figures);
    const double floor = median(floors);
    return {what,
            figure,
            floor,
            unit,
            decimals(figure / floor, "x"),
            "<= " + decimals(goal, "x"),
            figure <= goal * floor};
}

Row rowBelow(const std::string& what, double figure, double floor, const std::string& unit,
             double goal) {
    return {
        what,          figure, floor, unit, decimals(figure, unit), "<= " + decimals(goal, unit),
        figure <= goal};
}

std::vector<Row> windowRows(WebSession& session) {
    Costs clone;
    Costs bare;
    Costs chromium;
    const bool hasChromium = std::filesystem::exists("/usr/bin/chromium");
    for (int round = 0; round <= rounds; ++round) {
        if (round == 1) {
            clone = bare = chromium = Costs(); // the first one warms up
        }
        measure(session, session.bare(), bare);
        measure(session, session.clone(), clone);
        if (hasChromium) {
            measure(session, session.chromium(), chromium);
        }
    }
    for (int round = 0; round < crashes; ++round) {
        measureKilled(session, session.bare(), bare);
        measureKilled(session, session.clone(), clone);
    }
    std::vector<Row> rows{
        rowAgainst("web clone: first paint, beside a bare window", clone.painted, bare.painted,
                   "ms", 1.1),
        rowAgainst("web clone: memory, beside a bare window", clone.memory, bare.memory, "MiB",
                   1.05),
    };
    if (hasChromium) {
        rows.push_back(rowAgainst("web clone: first paint, beside Chromium's", clone.painted,
                                  chromium.painted, "ms", 1));
        rows.push_back(rowAgainst("web clone: memory, beside Chromium's", clone.memory,
                                  chromium.memory, "MiB", 1));
    }
    rows.push_back(rowBelow("web clone: end after SIGTERM", median(clone.ended), median(bare.ended),
                            "ms", 500));
    rows.push_back(rowBelow("web clone: last process after SIGKILL",
                            *std::max_element(clone.killed.begin(), clone.killed.end()),
                            *std::max_element(bare.killed.begin(), bare.killed.end()), "ms", 4000));
    return rows;
}

// Opens the running clone again and again, in turn with a program that does nothing.
void openAgain(WebSession& session, std::vector<double>& again, std::vector<double>& nothing) {
    for (int round = 0; round < 3 * rounds; ++round) {
        nothing.push_back(session.run({"/bin/true"}) * milliseconds);
        again.push_back(session.run(session.clone()) * milliseconds);
    }
}

std::vector<Row> runningRows(WebSession& session) {
    std::vector<double> again;
    std::vector<double> nothing;
    std::vector<double> back;
    (void)session.show(session.clone());
    openAgain(session, again, nothing);
    for (int round = 0; round < crashes; ++round) {
        back.push_back(session.crash() * milliseconds);
    }
    std::vector<double> flooded;
    std::vector<double> nothingThen;
    session.flood();
    openAgain(session, flooded, nothingThen);
    const double quiet = median(again);
    const double busy = median(flooded);
    (void)session.end(SIGTERM);
    return {rowBelow("web clone: second opening", quiet, median(nothing), "ms", 150),
            rowBelow("web clone: page is back after a crash", median(back), 0, "ms", 1000),
            {"web clone: second opening during floods", busy, quiet, "ms",
             decimals(busy - quiet, "ms more"), "<= " + decimals(100, "ms more"),
             busy - quiet <= 100}};
}

void printLoad() {
    std::array<double, 3> load{};
    if (::getloadavg(load.data(), 3) == 3) {
        std::printf("load of the machine in 1, 5 and 15 minutes: %.1f, %.1f, %.1f\n", load[0],
                    load[1], load[2]);
    }
}

} // namespace
} // namespace quorvel::benchmarks

int main() {
    using namespace quorvel;
    if (const auto missing = testing::UserSession::missingPrograms(); !missing.empty()) {
        std::fprintf(stderr, "%s is not installed\n", missing.front().c_str());
        return 1;
    }
    try {
        benchmarks::WebSession session;
        benchmarks::print(benchmarks::windowRows(session));
        for (const benchmarks::Row& row : benchmarks::runningRows(session)) {
            benchmarks::print(row);
        }
        benchmarks::printLoad();
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "web_benchmarks: %s\n", error.what());
        return 1;
    }
}
