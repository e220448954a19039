#include "tests/support/LoopDisk.h"

#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/Process.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryHome.h"

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

bool succeeds(const fs::path& program, const std::vector<std::string>& arguments) {
    try {
        return Process::run({.executable = program,
                             .arguments = arguments,
                             .standardOutput = Process::Discard{},
                             .standardError = Process::Discard{}})
                   .waitUntilExit() == 0;
    } catch (const PlatformError&) {
        return false;
    }
}

} // namespace

LoopDiskResult onLoopDisk(const fs::path& folder, const std::string& kind,
                          const std::function<std::string()>& check) {
    const TemporaryFolder place;
    const fs::path image = place / "image";
    write(image, "");
    fs::resize_file(image, std::uintmax_t{400} << 20U);
    const fs::path maker = "/usr/sbin/mkfs." + kind;
    if (!isExecutableFile(maker)) {
        return {.skipped = maker.string() + " is not installed"};
    }
    if (!succeeds(maker, {"-q", image.string()})) {
        return {.skipped = maker.string() + " failed"};
    }
    const std::string unmountable = "a loop device can't be mounted here";
    const auto problem = inPrivateMounts([&]() -> std::string {
        return succeeds("/usr/bin/mount", {"-o", "loop", image.string(), folder.string()})
                   ? check()
                   : unmountable;
    });
    if (!problem || *problem == unmountable) {
        return {.skipped = problem.value_or("the kernel forbids private mounts")};
    }
    return {.problem = *problem};
}

} // namespace quorvel::testing
