// web_benchmarks: what a web clone's window costs, beside a bare window of the same engine and
// Chromium's window for one site, each in turn in the session of an ordinary user.
#include "benchmarks/Comparison.h"

#include "tests/EndToEnd/Programs.h"
#include "tests/EndToEnd/UserSession.h"
#include "tests/support/Waiting.h"

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;
using testing::read;
using testing::waitUntil;

constexpr int rounds = 7;
constexpr double milliseconds = 1000;
constexpr std::chrono::seconds longestWait{60};

// The programs that show the same page, and what they cost.
class Windows {
public:
    Windows() {
        session_.environment["QUORVEL_WEB_HOST"] = QUORVEL_WEB_HOST;
        session_.environment["GSK_RENDERER"] = "cairo"; // there is no graphics card
        session_.write(session_.home / "site.py", read(QUORVEL_SITE));
        session_
            .start({"/usr/bin/python3", (session_.home / "site.py").string(),
                    (session_.home / "port").string(), requests().string()})
            .detach();
        require(waitUntil([&] { return fs::exists(session_.home / "port"); }, longestWait),
                "starting the site");
        require(session_.run({QUORVEL_CTL, "create", "--kind", "web", "--name", "Portal", "--url",
                              page()}) == 0,
                "creating the clone");
    }

    [[nodiscard]] std::string page() const {
        return "http://127.0.0.1:" + read(session_.home / "port") + "/painted";
    }
    [[nodiscard]] std::vector<std::string> clone() const {
        return {(session_.home / "Applications/Portal.app/Contents/MacOS/runner").string()};
    }
    [[nodiscard]] std::vector<std::string> bare() const {
        return {QUORVEL_BARE_WINDOW, page(), (session_.home / "bare").string()};
    }
    [[nodiscard]] std::vector<std::string> chromium() const {
        return {
            "/usr/bin/chromium",      "--app=" + page(),
            "--no-first-run",         "--disable-gpu",
            "--password-store=basic", "--user-data-dir=" + (session_.home / "chromium").string()};
    }

    // Seconds from the start of the program until its page has been painted.
    double show(const std::vector<std::string>& command) {
        const std::size_t before = read(requests()).size();
        return secondsOf([&] {
            session_.start(command).detach();
            waitForRequest("/was-painted", before);
        });
    }

    // Seconds that a second opening takes: until its process has ended.
    double openAgain() {
        return secondsOf([&] { require(session_.run(clone()) == 0, "opening it again"); });
    }
    double startNothing() {
        return secondsOf([&] { require(session_.run({"/bin/true"}) == 0, "/bin/true"); });
    }

    // Ends the program; returns the seconds until all its processes are gone.
    double end() {
        return secondsOf([&] {
            for (const pid_t pid : processes()) {
                ::kill(pid, SIGTERM);
            }
            require(waitUntil([&] { return processes().empty(); }, longestWait), "ending a window");
        });
    }

    // The memory of all its processes in MiB, each shared page counted once.
    [[nodiscard]] double memory() const {
        double kibibytes = 0;
        for (const pid_t pid : processes()) {
            std::istringstream lines(read("/proc/" + std::to_string(pid) + "/smaps_rollup"));
            for (std::string word; lines >> word;) {
                if (word == "Pss:") {
                    double share = 0;
                    lines >> share;
                    kibibytes += share;
                }
            }
        }
        return kibibytes / 1024;
    }

private:
    [[nodiscard]] fs::path requests() const { return session_.home / "requests"; }

    // Those with a home in the session that show a page.
    [[nodiscard]] std::vector<pid_t> processes() const {
        std::vector<pid_t> found;
        for (const pid_t pid : session_.processesWith(session_.folder().string())) {
            const std::string line = read("/proc/" + std::to_string(pid) + "/cmdline");
            for (const char* part : {"MacOS/runner", "bare_web_window", "chromium", "WebKit",
                                     "bwrap", "xdg-dbus-proxy"}) {
                if (line.find(part) < line.find('\0')) {
                    found.push_back(pid);
                    break;
                }
            }
        }
        return found;
    }

    void waitForRequest(const std::string& text, std::size_t before) const {
        require(waitUntil([&] { return read(requests()).find(text, before) != std::string::npos; },
                          longestWait),
                "showing a window: " + session_.log());
    }

    static void require(bool isDone, const std::string& what) {
        if (!isDone) {
            throw std::runtime_error(what + " failed");
        }
    }

    testing::UserSession session_{};
};

struct Costs {
    std::vector<double> painted{};
    std::vector<double> memory{};
    std::vector<double> ended{};
};

void measure(Windows& windows, const std::vector<std::string>& command, Costs& costs) {
    costs.painted.push_back(windows.show(command) * milliseconds);
    costs.memory.push_back(windows.memory());
    costs.ended.push_back(windows.end() * milliseconds);
}

// The same, and false for a peer that can't be measured: it is left out.
bool measurePeer(Windows& windows, const std::vector<std::string>& command, Costs& costs) {
    try {
        measure(windows, command, costs);
        return true;
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s is left out: %.200s\n", command.front().c_str(), error.what());
        costs = Costs();
        (void)windows.end();
        return false;
    }
}

double median(const std::vector<double>& values) {
    return percentile(values, 0.5);
}

Row rowAgainst(const std::string& what, double figure, double floor, const std::string& unit,
               double goal) {
    return {what,
            figure,
            floor,
            unit,
            decimals(figure / floor, "x"),
            "<= " + decimals(goal, "x"),
            figure <= goal * floor};
}

std::vector<Row> webRows() {
    Windows windows;
    Costs clone;
    Costs bare;
    Costs chromium;
    std::vector<double> again;
    std::vector<double> nothing;
    bool hasBare = true;
    bool hasChromium = fs::exists("/usr/bin/chromium");
    for (int round = 0; round <= rounds; ++round) {
        if (round == 1) {
            clone = bare = chromium = Costs(); // the first one warms up
        }
        measure(windows, windows.clone(), clone);
        hasBare = hasBare && measurePeer(windows, windows.bare(), bare);
        hasChromium = hasChromium && measurePeer(windows, windows.chromium(), chromium);
    }
    (void)windows.show(windows.clone());
    for (int round = 0; round < 3 * rounds; ++round) {
        nothing.push_back(windows.startNothing() * milliseconds);
        again.push_back(windows.openAgain() * milliseconds);
    }
    std::vector<Row> rows;
    if (hasBare) {
        rows.push_back(rowAgainst("web clone: first paint, beside a bare window",
                                  median(clone.painted), median(bare.painted), "ms", 1.1));
        rows.push_back(rowAgainst("web clone: memory, beside a bare window", median(clone.memory),
                                  median(bare.memory), "MiB", 1.05));
    }
    if (hasChromium) {
        rows.push_back(rowAgainst("web clone: first paint, beside Chromium's",
                                  median(clone.painted), median(chromium.painted), "ms", 1));
        rows.push_back(rowAgainst("web clone: memory, beside Chromium's", median(clone.memory),
                                  median(chromium.memory), "MiB", 1));
    }
    const double second = median(again);
    rows.push_back({"web clone: second opening", second, median(nothing), "ms",
                    decimals(second, "ms"), "<= 150 ms", second <= 150});
    const double end = median(clone.ended);
    rows.push_back({"web clone: end after SIGTERM", end, hasBare ? median(bare.ended) : 0, "ms",
                    decimals(end, "ms"), "<= 500 ms", end <= 500});
    (void)windows.end();
    return rows;
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
        benchmarks::print(benchmarks::webRows());
        return 0;
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
