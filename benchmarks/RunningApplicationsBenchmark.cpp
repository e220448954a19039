#include "Platform/copying/FileCopy.h"
#include "Platform/files/FileWriting.h"
#include "benchmarks/Benchmarks.h"

#include "Base/PropertyList.h"
#include "Platform/desktop/Workspace.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/Process.h"

#include <cctype>
#include <dirent.h>
#include <stdexcept>
#include <unistd.h>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

constexpr int clones = 1000;
constexpr int processes = 300;
constexpr int runningClones = 100;

std::string identifier(int number) {
    return "app.quorvel.instance." + std::to_string(number);
}

fs::path makeBundle(const fs::path& folder, int number) {
    const fs::path contents = folder / ("Clone " + std::to_string(number) + ".app") / "Contents";
    createDirectories(contents / "MacOS");
    writeFile(contents / "Info.plist",
              PropertyList::xml({{"CFBundleIdentifier", identifier(number)}}));
    fs::create_hard_link(folder / "sleep", contents / "MacOS" / "runner");
    return contents / "MacOS" / "runner";
}

Process sleeping(const fs::path& program) {
    Process::Options options;
    options.executable = program;
    options.arguments = {"1000"};
    return Process::run(options);
}

// The least that any search of the running programs has to do: list /proc and follow each link.
int readLinks() {
    int count = 0;
    DIR* table = ::opendir("/proc");
    char target[4096];
    while (const dirent* entry = ::readdir(table)) {
        if (std::isdigit(static_cast<unsigned char>(entry->d_name[0])) != 0) {
            const std::string link = std::string("/proc/") + entry->d_name + "/exe";
            count += ::readlink(link.c_str(), target, sizeof target) > 0 ? 1 : 0;
        }
    }
    ::closedir(table);
    return count;
}

} // namespace

std::vector<Row> runningApplicationsRows(const fs::path& folder) {
    copyFile("/bin/sleep", folder / "sleep");
    std::vector<Process> started;
    for (int number = 0; number < clones; ++number) {
        const fs::path runner = makeBundle(folder, number);
        if (number < runningClones) {
            started.push_back(sleeping(runner));
        }
    }
    while (started.size() < processes) {
        started.push_back(sleeping("/bin/sleep"));
    }

    const auto workspace = makeSystemWorkspace();
    Row row = compareTimes(
        "which of 1,000 clones run, among 300 processes",
        [&] {
            const RunningApplications running = workspace->runningApplications();
            int found = 0;
            for (int number = 0; number < clones; ++number) {
                found += running.contains(identifier(number)) ? 1 : 0;
            }
            if (found != runningClones) {
                throw std::runtime_error("found " + std::to_string(found) + " running clones");
            }
        },
        [] {
            if (readLinks() < processes) {
                throw std::runtime_error("processes are missing");
            }
        },
        3, 50);
    for (Process& process : started) {
        process.terminate();
        process.waitUntilExit();
    }
    return {row};
}

} // namespace quorvel::benchmarks
