#include "benchmarks/Benchmarks.h"

#include "LaunchKit/WrapperGenerator.h"
#include "Platform/files/FileWriting.h"
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

Row startRow(const std::string& name, const fs::path& runner, double limit) {
    std::vector<double> through;
    std::vector<double> alone;
    for (int round = 0; round < starts; ++round) {
        alone.push_back(startToEnd("/bin/true"));
        through.push_back(startToEnd(runner));
    }
    const double figure = percentile(through, 0.95) * milliseconds;
    const double floor = percentile(alone, 0.95) * milliseconds;
    return {name + ", 95th percentile of 200",
            figure,
            floor,
            "ms",
            decimals(figure - floor, "ms more"),
            "<= " + decimals(limit, "ms more"),
            figure - floor <= limit};
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
    WrapperGenerator::Options command;
    command.config.displayName = "Command";
    command.config.kind = ShortcutKind::command;
    command.config.commandPath = "/bin/true";
    command.config.instanceHome = (folder / "data").string();
    command.runnerBinary = QUORVEL_RUNNER;
    WrapperGenerator::Options app;
    app.config.displayName = "App";
    app.config.targetAppPath = (folder / "true.desktop").string();
    app.config.instanceHome = (folder / "home").string();
    app.runnerBinary = QUORVEL_RUNNER;
    writeFile(app.config.targetAppPath,
              "[Desktop Entry]\nType=Application\nName=True\nExec=/bin/true %U\n");
    const auto runnerIn = [&](const WrapperGenerator::Options& options) {
        return WrapperGenerator().generate(folder, options) / "Contents/MacOS/runner";
    };
    return {startRow("start through the runner", runnerIn(command), 5),
            startRow("start of a desktop entry through the runner", runnerIn(app), 3), sizeRow(),
            libraryRow()};
}

} // namespace quorvel::benchmarks
