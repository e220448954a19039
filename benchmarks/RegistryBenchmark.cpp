#include "Platform/files/FileWriting.h"
#include "benchmarks/Benchmarks.h"

#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

void makeWrappers(const fs::path& folder, int count) {
    for (int number = 0; number < count; ++number) {
        const std::string name = "Chat (Account " + std::to_string(number * 7919 % count) + ")";
        InstanceConfig config;
        config.displayName = name;
        config.bundleId = "app.quorvel.instance.chat-" + std::to_string(number);
        config.targetAppPath = "/Applications/Chat.app";
        config.instanceHome = "~/QuorvelInstances/" + name;
        config.extraArgs = {"--user-data-dir={{instanceHome}}/QuorvelData"};
        config.environment = {{"LANG", "de_DE.UTF-8"}, {"TZ", "Europe/Berlin"}};
        config.iconLabel = IconLabel{"WORK", "#FFFFFF", IconLabel::Position::bottom};
        const fs::path file = configOf(folder / (name + ".app"));
        createDirectories(file.parent_path());
        writeFile(file, config.json());
    }
}

// The least that a listing has to do: list the folder, open each file and read it.
std::size_t readAll(const fs::path& folder) {
    std::size_t bytes = 0;
    DIR* stream = ::opendir(folder.c_str());
    char buffer[4096];
    while (const dirent* entry = ::readdir(stream)) {
        const std::string file =
            folder.native() + "/" + entry->d_name + "/Contents/Resources/instance.json";
        const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        if (descriptor < 0) {
            continue;
        }
        ssize_t count = 0;
        while ((count = ::read(descriptor, buffer, sizeof buffer)) > 0) {
            bytes += static_cast<std::size_t>(count);
        }
        ::close(descriptor);
    }
    ::closedir(stream);
    return bytes;
}

} // namespace

std::vector<Row> registryRows(const fs::path& folder) {
    std::vector<Row> rows;
    for (const int count : {1'000, 10'000}) {
        const fs::path clones = folder / std::to_string(count);
        makeWrappers(clones, count);
        const InstanceRegistry registry({clones});
        rows.push_back(compareTimes(
            "list " + std::to_string(count) + " clones, against reading their files",
            [&] {
                if (registry.list().size() != static_cast<std::size_t>(count)) {
                    throw std::runtime_error("clones are missing from the list");
                }
            },
            [&] {
                if (readAll(clones) == 0) {
                    throw std::runtime_error("nothing was read");
                }
            },
            2, 15));
    }
    // The system itself takes longer for each file once its caches no longer hold all of them.
    const double growth = rows[1].figure / rows[0].figure;
    const double floorGrowth = rows[1].floor / rows[0].floor;
    constexpr double goal = 1.2;
    rows.push_back({"growth from 1,000 to 10,000, against that of reading", growth, floorGrowth,
                    "x", decimals(growth / floorGrowth, "x"), "<= " + decimals(goal, "x"),
                    growth <= goal * floorGrowth});
    return rows;
}

} // namespace quorvel::benchmarks
