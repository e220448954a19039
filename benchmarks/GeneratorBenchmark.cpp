#include "benchmarks/Benchmarks.h"

#include "LaunchKit/Wrappers/WrapperPropertyList.h"

#include <fcntl.h>
#include <sys/sendfile.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

void put(const std::string& file, const std::string& bytes) {
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (::write(descriptor, bytes.data(), bytes.size()) < 0) {
        std::perror(file.c_str());
    }
    ::close(descriptor);
}

void copy(const std::string& from, const std::string& to) {
    const int in = ::open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int out = ::open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    struct stat status {};
    ::fstat(in, &status);
    for (off_t left = status.st_size; left > 0;) {
        const ssize_t count = ::sendfile(out, in, nullptr, static_cast<std::size_t>(left));
        if (count <= 0) {
            break;
        }
        left -= count;
    }
    ::close(out);
    ::close(in);
}

// The files of a wrapper, created and removed with system calls alone.
void makeTree(const std::string& wrapper, const std::string& json, const std::string& info) {
    for (const char* folder : {"", "/Contents", "/Contents/MacOS", "/Contents/Resources"}) {
        ::mkdir((wrapper + folder).c_str(), 0777);
    }
    copy(QUORVEL_RUNNER, wrapper + "/Contents/MacOS/runner");
    ::chmod((wrapper + "/Contents/MacOS/runner").c_str(), 0755);
    put(wrapper + "/Contents/Resources/instance.json", json);
    put(wrapper + "/Contents/Info.plist", info);
    put(wrapper + "/Contents/PkgInfo", "APPL????");
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
    const std::string bare = folder / "Bare.app";
    constexpr int batch = 20;
    // Both replace the wrapper of the round before.
    return {compareTimes(
        "make 20 wrappers, against bare system calls",
        [&] {
            for (int number = 0; number < batch; ++number) {
                (void)WrapperGenerator().generate(folder, options);
            }
        },
        [&] {
            for (int number = 0; number < batch; ++number) {
                removeTree(bare);
                makeTree(bare, json, info);
            }
        },
        1.5, 40)};
}

} // namespace quorvel::benchmarks
