// Feeds bytes to the reader of programs' files.
#include "Platform/programs/ProgramFile_linux.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using quorvel::ProgramFile;
    const quorvel::FileHandle bytes(::memfd_create("program", MFD_CLOEXEC));
    if (::write(bytes.descriptor(), data, size) != static_cast<ssize_t>(size)) {
        return 0;
    }
    const auto file = ProgramFile::open("/proc/self/fd/" + std::to_string(bytes.descriptor()));
    if (!file || (file->isAppImage() && !file->isElf())) {
        std::abort();
    }
    const auto libraries = file->neededLibraries();
    if (libraries.size() > ProgramFile::maxLibraries || (!libraries.empty() && !file->isElf())) {
        std::abort();
    }
    return 0;
}
