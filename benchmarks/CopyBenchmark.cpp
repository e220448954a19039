#include "benchmarks/Benchmarks.h"

#include "Platform/copying/FolderCopy.h"
#include "Platform/processes/Process.h"
#include "Platform/staging/StagedFolder.h"

#include <fstream>
#include <random>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

// As a browser's profile: many small files, 300 MiB of bytes that can't be compressed.
void makeFiles(const fs::path& folder) {
    constexpr int files = 20'000;
    constexpr int folders = 200;
    constexpr std::size_t largest = 30'000;
    std::mt19937 random(1); // NOLINT: the same files each time
    std::string bytes;
    for (int number = 0; number < files; ++number) {
        const fs::path place = folder / std::to_string(number % folders);
        fs::create_directories(place);
        bytes.resize(random() % largest);
        for (char& byte : bytes) {
            byte = static_cast<char>(random());
        }
        std::ofstream(place / std::to_string(number)) << bytes;
    }
}

} // namespace

std::vector<Row> copyRows(const fs::path& folder) {
    const fs::path source = folder / "source";
    makeFiles(source);
    const auto copyWith = [&](const char* program, const fs::path& to) {
        (void)Process::run(
            {.executable = program, .arguments = {"-a", source.string(), to.string()}})
            .waitUntilExit();
    };
    constexpr double goal = 1.3;
    constexpr int rounds = 5;
    // Without the last step, which waits for the disk: cp does not.
    return {compareTimes(
        "copy 20,000 files of 300 MiB, against cp -a",
        [&] {
            const StagedFolder copy(folder / "figure");
            (void)FolderCopy(source).copyInto(copy.descriptor());
        },
        [&] {
            copyWith("/bin/cp", folder / "floor");
            fs::remove_all(folder / "floor"); // as the other removes its copy
        },
        goal, rounds)};
}

} // namespace quorvel::benchmarks
