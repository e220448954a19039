#include "WebHost/Storage/WebHome.h"

#include "Platform/files/ContainedFolder.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"

#include <filesystem>

namespace quorvel {
namespace {

void makePrivate(const std::string& folder) {
    std::error_code code;
    std::filesystem::permissions(folder, std::filesystem::perms::owner_all, code);
    if (code) {
        throw PlatformError(code, folder, "changed");
    }
}

} // namespace

void WebHome::createHome() const {
    if (!itemExists(home)) {
        createDirectories(home);
        makePrivate(home);
    }
}

void WebHome::create() const {
    createHome();
    for (const std::string& part : {data, cache}) {
        if (!ensureFolderBelow(home, part)) {
            throw PlatformError(std::make_error_code(std::errc::not_a_directory), part, "created");
        }
    }
    for (const std::string& part : {folder, data, cache}) {
        makePrivate(part);
    }
}

} // namespace quorvel
