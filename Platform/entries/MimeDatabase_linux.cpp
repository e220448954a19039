#include "Platform/entries/MimeDatabase_linux.h"

#include "Platform/files/PlatformError.h"
#include "Platform/processes/Process.h"
#include "Platform/programs/ProgramResolution.h"

#include <chrono>

namespace quorvel {

void updateMimeDatabase(const std::filesystem::path& entryFolder) {
    constexpr std::chrono::milliseconds limit{2000};
    const auto tool = findProgram("update-desktop-database");
    if (!tool) {
        return;
    }
    try {
        Process process = Process::run({.executable = *tool,
                                        .arguments = {entryFolder.native()},
                                        .standardOutput = Process::Discard{},
                                        .standardError = Process::Discard{}});
        if (!process.waitUntilExit(limit)) {
            process.detach();
        }
    } catch (const PlatformError&) {
        // The entry is in the menu nevertheless.
    }
}

} // namespace quorvel
