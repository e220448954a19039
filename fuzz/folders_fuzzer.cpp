// Feeds text to the readers of the user's folders and of the system's name.
#include "Platform/desktop/OsRelease_linux.h"
#include "Platform/homes/XdgUserDirs_linux.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    if (quorvel::distributionIn(text).size() > size) {
        std::abort();
    }
    const auto folders = quorvel::parseXdgUserDirs(text);
    if (quorvel::parseXdgUserDirs(quorvel::xdgUserDirsText(folders)) != folders) {
        std::abort();
    }
    for (const auto& [name, folder] : folders) {
        if (!quorvel::withHomeExpanded(folder, "/home/user").starts_with('/')) {
            std::abort();
        }
    }
    return 0;
}
