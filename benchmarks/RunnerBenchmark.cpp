#include "benchmarks/Benchmarks.h"

#include "LaunchKit/WrapperGenerator.h"
#include "Platform/processes/Process.h"

#include <chrono>
#include <sstream>
#include <stdexcept>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

constexpr int starts = 200;
constexpr double milliseconds = 1000;

// Seconds from now until the program that `start` brings up has begun to run: /bin/true does
// nothing else, so its end is its beginning.
double startToEnd(const fs::path& program) {
    return secondsOf([&] {
        Process::Options options;
        options.executable = program;
        if (Process::run(options).waitUntilExit() != 0) {
            throw std::runtime_error(program.string() + " failed");
        }
    });
}

Row startRow(const fs::path& runner) {
    std::vector<double> through;
    std::vector<double> alone;
    for (int round = 0; round < starts; ++round) {
        alone.push_back(startToEnd("/bin/true"));
        through.push_back(startToEnd(runner));
    }
    const double figure = percentile(through, 0.95) * milliseconds;
    const double floor = percentile(alone, 0.95) * milliseconds;
    return {"start through the runner, 95th percentile of 200",
            figure,
            floor,
            "ms",
            decimals(figure - floor, "ms more"),
            "<= 5 ms more",
            figure - floor <= 5};
}

Row sizeRow() {
    constexpr double mebibyte = 1 << 20;
    const double size = static_cast<double>(fs::file_size(QUORVEL_RUNNER)) / mebibyte;
    return {"size of the runner", size, 0, "MiB", decimals(size, "MiB"), "<= 1.5 MiB", size <= 1.5};
}

Row libraryRow() {
    Process::Options options;
    options.executable = "/usr/bin/ldd";
    options.arguments = {QUORVEL_RUNNER};
    std::istringstream lines(Process::capture(options, 65536));
    int count = 0;
    for (std::string line; std::getline(lines, line);) {
        // The kernel's own page, which is not backed by a file, does not count.
        count += line.find("linux-vdso") == std::string::npos ? 1 : 0;
    }
    return {"shared libraries of the runner",
            static_cast<double>(count),
            0,
            "",
            std::to_string(count),
            "<= 6",
            count <= 6};
}

} // namespace

std::vector<Row> runnerRows(const fs::path& folder) {
    WrapperGenerator::Options options;
    options.config.displayName = "True";
    options.config.kind = ShortcutKind::command;
    options.config.commandPath = "/bin/true";
    options.config.instanceHome = (folder / "data").string();
    options.runnerBinary = QUORVEL_RUNNER;
    const fs::path wrapper = WrapperGenerator().generate(folder, options);
    return {startRow(wrapper / "Contents/MacOS/runner"), sizeRow(), libraryRow()};
}

} // namespace quorvel::benchmarks
