#include "LaunchKit/Launching/HelperProgram.h"

#include "Platform/files/FileSystem.h"

#include <array>
#include <vector>

namespace quorvel {
namespace {

// Where they are installed, by this build and by packages.
constexpr std::array helperFolders{QUORVEL_LIBEXEC "/", "/usr/libexec/quorvel/",
                                   "/usr/local/libexec/quorvel/"};

std::string valueOf(const Environment& session, const std::string& variable) {
    const auto found = session.find(variable);
    return found == session.end() ? std::string() : found->second;
}

} // namespace

std::optional<std::filesystem::path>
helperProgram(const std::string& name, const std::string& variable, const Environment& session) {
    std::vector<std::string> paths{valueOf(session, variable)};
    for (const std::string folder : helperFolders) {
        paths.push_back(folder + name);
    }
    for (const std::string& path : paths) {
        if (path.starts_with('/') && isExecutableFile(path)) {
            return path;
        }
    }
    return std::nullopt;
}

std::optional<std::filesystem::path>
helperModule(const std::string& name, const std::string& variable, const Environment& session) {
    const std::string named = valueOf(session, variable);
    if (!named.empty()) {
        return named.starts_with('/') && itemExists(named)
                   ? std::optional<std::filesystem::path>(named)
                   : std::nullopt;
    }
    for (const std::string folder : helperFolders) {
        if (itemExists(folder + name)) {
            return folder + name;
        }
    }
    return std::nullopt;
}

} // namespace quorvel
