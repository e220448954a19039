#include "benchmarks/Benchmarks.h"

#include "LaunchKit/Wrappers/WrapperPropertyList.h"

#include <array>
#include <cstdio>
#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

// Each is on the disk when it is closed, as all of a wrapper must be before it takes its place.
void flushAndClose(int descriptor) {
    ::fsync(descriptor);
    ::close(descriptor);
}

void flushFolder(const std::string& folder) {
    flushAndClose(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

void put(const std::string& file, const std::string& bytes) {
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (::write(descriptor, bytes.data(), bytes.size()) < 0) {
        std::perror(file.c_str());
    }
    flushAndClose(descriptor);
}

void copy(const std::string& from, const std::string& to) {
    const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0777);
    struct stat status {};
    ::fstat(in, &status);
    for (off_t left = status.st_size; left > 0;) {
        const ssize_t count = ::sendfile(out, in, nullptr, static_cast<std::size_t>(left));
        if (count <= 0) {
            break;
        }
        left -= count;
    }
    flushAndClose(out);
    ::close(in);
}

constexpr std::array<const char*, 4> folders{"", "/Contents", "/Contents/MacOS",
                                             "/Contents/Resources"};

// The files of a wrapper, created and removed with system calls alone.
void makeTree(const std::string& wrapper, const std::string& json, const std::string& info) {
    for (const char* folder : folders) {
        ::mkdir((wrapper + folder).c_str(), 0777);
    }
    copy(QUORVEL_RUNNER, wrapper + "/Contents/MacOS/runner");
    put(wrapper + "/Contents/Resources/instance.json", json);
    put(wrapper + "/Contents/Info.plist", info);
    put(wrapper + "/Contents/PkgInfo", "APPL????");
    for (const char* folder : folders) {
        flushFolder(wrapper + folder);
    }
}

void removeTree(const std::string& wrapper) {
    for (const char* file : {"/Contents/MacOS/runner", "/Contents/Resources/instance.json",
                             "/Contents/Info.plist", "/Contents/PkgInfo"}) {
        ::unlink((wrapper + file).c_str());
    }
    for (const char* folder : {"/Contents/Resources", "/Contents/MacOS", "/Contents", ""}) {
        ::rmdir((wrapper + folder).c_str());
    }
}

// Replaces the wrapper of the round before as a whole, even if the power fails.
void replaceTree(const std::string& folder, const std::string& json, const std::string& info) {
    const std::string hidden = folder + "/.bare";
    const std::string wrapper = folder + "/Bare.app";
    ::mkdir(hidden.c_str(), 0700);
    makeTree(hidden + "/Bare.app", json, info);
    flushFolder(hidden);
    if (::rename((hidden + "/Bare.app").c_str(), wrapper.c_str()) != 0) {
        ::renameat2(AT_FDCWD, (hidden + "/Bare.app").c_str(), AT_FDCWD, wrapper.c_str(),
                    RENAME_EXCHANGE);
    }
    flushFolder(folder);
    removeTree(hidden + "/Bare.app");
    ::rmdir(hidden.c_str());
}

} // namespace

std::vector<Row> generatorRows(const fs::path& folder) {
    WrapperGenerator::Options options;
    options.config.displayName = "Build";
    options.config.bundleId = "app.quorvel.instance.build";
    options.config.kind = ShortcutKind::command;
    options.config.commandPath = "/bin/true";
    options.config.instanceHome = "~/QuorvelInstances/Build";
    options.runnerBinary = QUORVEL_RUNNER;
    const std::string json = options.config.json();
    const std::string info =
        PropertyList::xml(WrapperPropertyList::infoPlist(options, std::nullopt));
    constexpr int batch = 20;
    return {compareTimes(
        "replace 20 wrappers, against bare system calls that flush",
        [&] {
            for (int number = 0; number < batch; ++number) {
                (void)WrapperGenerator().generate(folder, options);
            }
        },
        [&] {
            for (int number = 0; number < batch; ++number) {
                replaceTree(folder, json, info);
            }
        },
        1.5, 40)};
}

} // namespace quorvel::benchmarks
