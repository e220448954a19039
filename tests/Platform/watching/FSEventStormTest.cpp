#include "tests/Platform/watching/Recording.h"
#include "tests/support/TemporaryHome.h"

#include <gtest/gtest.h>
#include <thread>

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

// Makes folders as deep as six, with files in all of them, and returns every path.
std::vector<std::string> makeStorm(const fs::path& base, int folders, int filesInEach) {
    std::vector<std::string> made;
    std::vector<fs::path> places{base};
    for (int number = 0; number < folders; ++number) {
        const fs::path& parent = places[static_cast<std::size_t>(number / 4)];
        const fs::path folder = parent / (std::to_string(number) + "d");
        fs::create_directory(folder);
        made.push_back(folder);
        places.push_back(folder);
        for (int file = 0; file < filesInEach; ++file) {
            made.push_back(folder / std::to_string(file));
            write(made.back(), "x");
        }
    }
    return made;
}

TEST(FSEventStormTest, OfFilesInNewFoldersIsRecordedToTheLast) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    const auto made = makeStorm(folder.path(), 400, 15);
    recording.stop();
    const auto recorded = recording.paths();
    for (const std::string& path : made) {
        EXPECT_TRUE(recorded.contains(path)) << path;
    }
    EXPECT_TRUE(recording.isComplete());
}

TEST(FSEventStormTest, FromSeveralThreadsIsRecordedToTheLast) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    std::vector<std::vector<std::string>> made(4);
    std::vector<std::thread> writers;
    for (std::size_t writer = 0; writer < made.size(); ++writer) {
        const fs::path base = folder / std::to_string(writer);
        writers.emplace_back([&made, writer, base] {
            fs::create_directory(base);
            made[writer] = makeStorm(base, 60, 10);
        });
    }
    for (std::thread& writer : writers) {
        writer.join();
    }
    recording.stop();
    const auto recorded = recording.paths();
    for (const auto& paths : made) {
        for (const std::string& path : paths) {
            EXPECT_TRUE(recorded.contains(path)) << path;
        }
    }
}

TEST(FSEventStormTest, ThatGoesOnDoesNotKeepTheRecordingFromStopping) {
    const TemporaryFolder folder;
    Recording recording(folder.path());
    std::atomic<bool> goesOn{true};
    std::atomic<int> turns{0};
    std::thread writer([&] {
        while (goesOn) {
            write(folder / ("dir/" + std::to_string(turns % 50)), "text");
            ++turns;
        }
    });
    while (turns < 200) {
        std::this_thread::yield();
    }
    recording.stop();
    goesOn = false;
    writer.join();
    EXPECT_TRUE(recording.has(folder / "dir/49"));
}

} // namespace
} // namespace quorvel
