#include "Platform/desktop/MimeDatabase_linux.h"

#include "Platform/desktop/ProgramResolution.h"
#include "Platform/files/PlatformError.h"
#include "Platform/processes/Process.h"

#include <chrono>
#include <thread>

namespace quorvel {

void updateMimeDatabase(const std::filesystem::path& entryFolder) {
    constexpr std::chrono::milliseconds limit{2000};
    constexpr std::chrono::milliseconds nap{1};
    const auto tool = findProgram("update-desktop-database");
    if (!tool) {
        return;
    }
    try {
        Process process = Process::run({.executable = *tool,
                                        .arguments = {entryFolder.native()},
                                        .standardOutput = Process::Discard{},
                                        .standardError = Process::Discard{}});
        const auto deadline = std::chrono::steady_clock::now() + limit;
        while (process.isRunning()) {
            if (std::chrono::steady_clock::now() > deadline) {
                process.detach();
                return;
            }
            std::this_thread::sleep_for(nap);
        }
    } catch (const PlatformError&) {
        // The entry is in the menu all the same.
    }
}

} // namespace quorvel
