#include "benchmarks/Benchmarks.h"
#include "benchmarks/StaleClones.h"

#include "Base/RandomUuid.h"
#include "LaunchKit/Changes/CloneRefresh.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "Platform/files/FileReading.h"
#include "Platform/staging/ExclusiveRename.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <fcntl.h>
#include <map>
#include <stdexcept>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

constexpr int clones = 1000;

// A file's path in a wrapper, and its bytes.
using Files = std::map<std::string, std::string>;

constexpr std::array<const char*, 4> folders{"", "/Contents", "/Contents/MacOS",
                                             "/Contents/Resources"};

Files filesOf(const fs::path& wrapper) {
    Files files;
    for (const auto& [path, bytes] : testing::treeOf(wrapper)) {
        if (bytes != "<folder>") {
            files["/" + path] = bytes;
        }
    }
    return files;
}

void writeFlushed(const std::string& file, const std::string& bytes) {
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0755);
    if (::write(descriptor, bytes.data(), bytes.size()) < 0 || ::fsync(descriptor) != 0) {
        throw std::runtime_error("not written: " + file);
    }
    ::close(descriptor);
}

void flushFolder(const std::string& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (::fsync(descriptor) != 0) {
        throw std::runtime_error("not flushed: " + folder);
    }
    ::close(descriptor);
}

// Replaces a wrapper as safely as a refresh does, with system calls alone.
void replaceBare(const std::string& folder, const std::string& wrapper, const Files& files) {
    const std::string hidden = folder + "/.floor-" + randomUuid();
    const std::string staged = hidden + "/new";
    ::mkdir(hidden.c_str(), 0700);
    for (const char* each : folders) {
        ::mkdir((staged + each).c_str(), 0777);
    }
    for (const auto& [path, bytes] : files) {
        writeFlushed(staged + path, bytes);
    }
    for (const char* each : folders) {
        flushFolder(staged + each);
    }
    flushFolder(hidden);
    if (exchangeItems(AT_FDCWD, staged.c_str(), AT_FDCWD, wrapper.c_str()) != 0) {
        throw std::runtime_error("not exchanged");
    }
    flushFolder(hidden);
    flushFolder(folder);
    for (const auto& file : files) {
        ::unlink((staged + file.first).c_str());
    }
    for (auto each = folders.rbegin(); each != folders.rend(); ++each) {
        ::rmdir((staged + *each).c_str());
    }
    ::rmdir(hidden.c_str());
}

void replaceEntry(const std::string& folder, const std::string& name, const std::string& bytes) {
    const std::string beside = folder + "/.floor-" + randomUuid();
    testing::write(beside, bytes);
    ::rename(beside.c_str(), (folder + "/" + name).c_str());
}

// The floor, in a folder of its own with as many wrappers and entries.
class BareRefresh {
public:
    explicit BareRefresh(const fs::path& folder)
        : wrappers_(folder / "wrappers"),
          entries_(folder / "entries"),
          files_(filesOf(InstanceRegistry().list().front().bundleURL)) {
        fs::create_directories(wrappers_);
        fs::create_directories(entries_);
        for (int number = 0; number < clones; ++number) {
            for (const auto& [path, bytes] : files_) {
                testing::write(wrapper(number) + path, bytes);
            }
        }
    }

    void replace(int number) const {
        replaceBare(wrappers_, wrapper(number), files_);
        replaceEntry(entries_, std::to_string(number), std::string(500, 'x'));
    }

private:
    [[nodiscard]] std::string wrapper(int number) const {
        return wrappers_ / (std::to_string(number) + ".app");
    }

    fs::path wrappers_;
    fs::path entries_;
    Files files_;
};

Row rowOf(const char* what, double cost, double least, double goal) {
    constexpr double milliseconds = 1000;
    return {.what = what,
            .figure = cost * milliseconds,
            .floor = least * milliseconds,
            .unit = "ms",
            .result = decimals(cost / least, "x"),
            .goal = "<= " + decimals(goal, "x"),
            .met = cost <= goal * least};
}

void requireRefreshed(const ChangedClone& changed) {
    if (!changed.isChanged || !changed.warnings.empty()) {
        throw std::runtime_error("a clone was not refreshed");
    }
}

void readFiles(const fs::path& wrapper) {
    constexpr std::size_t limit = std::size_t{64} << 20U;
    for (const char* file : {"MacOS/runner", "Info.plist", "Resources/instance.json",
                             "Resources/wrapper.json", "Resources/AppIcon.icns"}) {
        (void)readFile((wrapper / "Contents" / file).string(), limit);
    }
}

// What `refresh --all` does, clone by clone in turn with the floor, since the disk is other
// programs' too.
Row refreshRow(const fs::path& folder, double goal) {
    makeStale();
    const BareRefresh bare(folder);
    std::vector<InstanceRecord> records;
    double figure = secondsOf([&] { records = InstanceRegistry().list(); });
    double floor = 0;
    const CloneRefresh refresh(QUORVEL_RUNNER);
    for (int number = 0; number < clones; ++number) {
        const fs::path& wrapper = records.at(static_cast<std::size_t>(number)).bundleURL;
        figure += secondsOf([&] { requireRefreshed(refresh.refresh(wrapper)); });
        floor += secondsOf([&] { bare.replace(number); });
    }
    figure += secondsOf([] { (void)repairMenu(InstanceRegistry().list()); });
    return rowOf("refresh 1,000 clones, against making the same files", figure, floor, goal);
}

Row listingRow(double goal) {
    makeStale();
    const CloneRefresh refresh(QUORVEL_RUNNER);
    std::vector<InstanceRecord> records;
    double figure = secondsOf([&] { records = InstanceRegistry().list(); });
    double floor = 0;
    for (const InstanceRecord& record : records) {
        floor += secondsOf([&] { readFiles(record.bundleURL); });
        figure += secondsOf([&] {
            if (refresh.reasonsFor(record) != std::vector{StaleReason::runner}) {
                throw std::runtime_error("a stale clone was not found");
            }
        });
    }
    return rowOf("find 1,000 stale clones, against reading their files", figure, floor, goal);
}

} // namespace

std::vector<Row> refreshRows(const fs::path& folder) {
    const testing::TemporaryHome home;
    makeClones(folder, clones);
    constexpr double goal = 1.5;
    return {refreshRow(folder, goal), listingRow(goal)};
}

} // namespace quorvel::benchmarks
