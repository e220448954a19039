// Files that were made to take memory, given to the built program.
#include "Base/PropertyList.h"
#include "Base/PropertyListLimits.h"
#include "tests/EndToEnd/PeakMemory.h"
#include "tests/support/BinaryList.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/Sanitizer.h"
#include "tests/support/TemporaryHome.h"

#include <QImage>

#include <cstdlib>
#include <functional>
#include <gtest/gtest.h>
#include <latch>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t megabyte = std::size_t{1} << 20U;
// Beside what a list may take: the file's bytes, up to twice as many as UTF-8, and the allocator's.
constexpr std::size_t allowance =
    PropertyListLimits::maximumBytes + 3 * PropertyList::maximumFileSize + 2 * megabyte;

// A property list of a certain kind, the longer the larger `size` is.
using Maker = std::function<std::string(std::size_t size)>;

std::string xmlOf(std::string_view start, std::string_view item, std::size_t count) {
    std::string list = "<plist><dict><key>CFBundleIdentifier</key>" + std::string(start);
    for (std::size_t index = 0; index < count; ++index) {
        list += item;
    }
    return list + (start.empty() ? "" : "</array>") + "</dict></plist>";
}

std::string binaryOf(const std::string& value) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("CFBundleIdentifier"));
    list.add(value);
    return list.finish(0);
}

std::string sharedBy(std::size_t times, const std::string& object) {
    BinaryList list;
    list.add(BinaryList::dictionary(1, 2));
    list.add(BinaryList::text("CFBundleIdentifier"));
    list.add(BinaryList::array(std::vector<std::uint64_t>(times, 3)));
    list.add(object);
    return list.finish(0);
}

const std::map<std::string, Maker> makers{
    {"many small values", [](auto size) { return xmlOf("<array>", "<true/>", size); }},
    {"many texts", [](auto size) { return xmlOf("<array>", "<string>a</string>", size); }},
    {"one long text",
     [](auto size) {
         return xmlOf("", "<string>" + std::string(size * 16, 'x') + "</string>", 1);
     }},
    {"one long text of other bytes",
     [](auto size) {
         return xmlOf("", "<string>" + std::string(size * 16, '\xE9') + "</string>", 1);
     }},
    {"one long wide text",
     [](auto size) { return binaryOf(BinaryList::wideText(std::string(size * 16, 'x'))); }},
    {"a shared text",
     [](auto size) { return sharedBy(size, BinaryList::text(std::string(4000, 'x'))); }},
    {"a shared wide text",
     [](auto size) { return sharedBy(size, BinaryList::wideText(std::string(4000, 'x'))); }},
    {"shared data",
     [](auto size) { return sharedBy(size, BinaryList::data(std::string(4000, 'x'))); }},
    {"a shared dictionary",
     [](auto size) { return sharedBy(size, BinaryList::container(0xD0, 0, {})); }},
};

bool isRead(const std::string& list) {
    return PropertyList::parseDictionary(list).has_value();
}

// The largest that is still read: the most that a file can do.
std::string largestRead(const Maker& make) {
    std::size_t read = 1;
    std::size_t refused = 1'000'000;
    while (refused - read > read / 50 + 1) {
        const std::size_t middle = (read + refused) / 2;
        (isRead(make(middle)) ? read : refused) = middle;
    }
    return make(read);
}

// Made in a process of its own, since the memory of this one would count as the program's.
void writeLargestRead(const std::string& app, const Maker& make) {
    const pid_t child = ::fork();
    if (child == 0) {
        write(app + "/Contents/Info.plist", largestRead(make));
        std::_Exit(0);
    }
    int status = 1;
    ASSERT_TRUE(child > 0 && ::waitpid(child, &status, 0) == child && status == 0);
}

// In a throw-away home, so that the user's applications don't count.
std::size_t peakOf(const TemporaryFolder& folder, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), QUORVEL_CTL);
    return peakMemoryOf(std::move(arguments), {{"HOME", folder.path().string()},
                                               {"CFFIXED_USER_HOME", folder.path().string()},
                                               {"PATH", "/usr/bin:/bin"}});
}

// Of a process that reads the list on that many threads at once.
std::size_t peakOfReading(const std::string& list, std::size_t threads) {
    const pid_t child = ::fork();
    if (child == 0) {
        std::latch start(static_cast<std::ptrdiff_t>(threads));
        std::vector<std::thread> readers(threads);
        for (std::thread& reader : readers) {
            reader = std::thread([&] {
                start.arrive_and_wait();
                (void)PropertyList::parseDictionary(list);
            });
        }
        for (std::thread& reader : readers) {
            reader.join();
        }
        std::_Exit(0);
    }
    int status = 1;
    struct rusage usage {};
    EXPECT_TRUE(child > 0 && ::wait4(child, &status, 0, &usage) == child && status == 0);
    return static_cast<std::size_t>(usage.ru_maxrss) * 1024;
}

// A sanitizer's own memory would count.
class MemoryTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (isSanitized) {
            GTEST_SKIP() << "a sanitizer is watching the memory";
        }
    }
};

TEST_F(MemoryTest, PropertyListsTakeNoMoreMemoryThanTheyMay) {
    const TemporaryFolder folder;
    const std::string app = (folder / "Hostile.app").string();
    write(app + "/Contents/Info.plist", binaryOf(BinaryList::text("small")));
    const std::size_t usual = peakOf(folder, {"inspect", app});
    for (const auto& [name, make] : makers) {
        writeLargestRead(app, make);
        EXPECT_LE(peakOf(folder, {"inspect", app}), usual + allowance) << name;
        EXPECT_LE(peakOf(folder, {"apps", "--search-dir", folder.path().string()}),
                  usual + allowance)
            << name;
    }
}

TEST_F(MemoryTest, PropertyListsAreRefusedWhenTheyWouldTakeMore) {
    const TemporaryFolder folder;
    const std::string app = (folder / "Hostile.app").string();
    // 240 megabytes, were it unfolded.
    const std::string list = sharedBy(4'000, BinaryList::text(std::string(60'000, 'x')));
    ASSERT_LT(list.size(), megabyte / 10);
    write(app + "/Contents/Info.plist", list);
    EXPECT_LE(peakOf(folder, {"inspect", app}), allowance);
    EXPECT_LE(peakOf(folder, {"apps", "--search-dir", folder.path().string()}), allowance);
}

TEST_F(MemoryTest, ManyPropertyListsAreNotReadAllAtOnce) {
    const std::string list = largestRead(makers.at("a shared dictionary"));
    const std::size_t one = peakOfReading(list, 1);
    // What a few were given may still be there while the next one is read, not that of all.
    EXPECT_LE(peakOfReading(list, 12), one + 3 * allowance);
}

// A picture of one color takes a few bytes, however large it is.
TEST_F(MemoryTest, HugePicturesTakeNoMoreMemoryThanTheyMay) {
    const TemporaryFolder folder;
    const std::string source = (folder / "huge.jp2").string();
    const std::string output = (folder / "out.icns").string();
    const auto peak = [&] {
        return peakOf(folder, {"icon", source, "--label", "A", "--output", output});
    };
    const auto writePicture = [&](int side) {
        const pid_t child = ::fork();
        if (child == 0) {
            QImage image(side, side, QImage::Format_ARGB32);
            image.fill(Qt::red);
            write(source, jpeg2000Of(image, Jpeg2000Form::rgba));
            std::_Exit(0);
        }
        ::waitpid(child, nullptr, 0);
    };
    writePicture(64);
    const std::size_t usual = peak();
    writePicture(4096);
    ASSERT_LT(fs::file_size(source), megabyte);
    EXPECT_LE(peak(), usual + 128 * megabyte);
    EXPECT_TRUE(fs::exists(output));
}

} // namespace
} // namespace quorvel::testing
