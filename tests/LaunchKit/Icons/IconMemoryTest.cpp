#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Icons/IcnsFile.h"
#include "Platform/processes/MainExecutable.h"
#include "Platform/processes/Process.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <malloc.h>
#include <sys/resource.h>
#include <unistd.h>

// What becomes of an icon when memory runs out. The limits are Linux's.

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;

const IconLabel work{"work", "#FFD60A", IconLabel::Position::bottom};

// Set for a copy of this program that composes an icon with that many more bytes and exits.
constexpr const char* memoryLimit = "QUORVEL_TEST_MEMORY_LIMIT";

void composeWithin(std::size_t bytes, const fs::path& source, const fs::path& out) {
    ::mallopt(M_ARENA_MAX, 1);
    ::mallopt(M_MMAP_THRESHOLD, 1 << 18);     // what is large is asked of the system each time
    IconComposer::compose(source, work, out); // loads the fonts and starts the threads
    fs::remove(out);
    ::malloc_trim(0);
    std::size_t pages = 0;
    std::ifstream statistics("/proc/self/statm");
    for (int field = 0; field < 6; ++field) { // the sixth is what can be written
        statistics >> pages;
    }
    const rlim_t limit = pages * static_cast<std::size_t>(::getpagesize()) + bytes;
    const rlimit limits{limit, limit};
    ::setrlimit(RLIMIT_DATA, &limits);
    IconComposer::compose(source, work, out);
}

std::vector<int> sizesWithin(std::size_t bytes, const fs::path& folder) {
    Process::Options options;
    options.executable = mainExecutable();
    options.arguments = {"--gtest_filter=IconMemoryTest.*"};
    options.directory = folder;
    options.environment = currentEnvironment();
    options.environment->insert_or_assign(memoryLimit, std::to_string(bytes));
    EXPECT_EQ(Process::run(options).waitUntilExit(), 0);
    std::vector<int> sizes;
    const auto file = IcnsFile::read(folder / "out.icns");
    for (const IcnsEntry& entry : file ? file->entries() : std::vector<IcnsEntry>{}) {
        sizes.push_back(entry.width);
    }
    return sizes;
}

TEST(IconMemoryTest, IsEnoughForTheSizesThatFitIntoIt) {
    if (isSanitized) {
        GTEST_SKIP() << "sanitizers take memory without bound";
    }
    if (const char* limit = std::getenv(memoryLimit)) {
        composeWithin(std::stoul(limit), "source", "out.icns");
        std::_Exit(0);
    }
    const TemporaryFolder folder;
    write(folder / "source", pngOf(chatIcon(16)));
    constexpr std::size_t mebibyte = std::size_t{1} << 20U;
    EXPECT_THAT(sizesWithin(256 * mebibyte, folder.path()),
                ElementsAre(1024, 512, 256, 128, 64, 32, 16));
    // The pixels of the largest alone take four.
    EXPECT_THAT(sizesWithin(3 * mebibyte, folder.path()), ElementsAre(512, 256, 128, 64, 32, 16));
}

} // namespace
} // namespace quorvel::testing
