#include "LaunchKit/HelperProgram.h"

#include "Platform/files/FileSystem.h"

namespace quorvel {

std::optional<std::filesystem::path>
helperProgram(const std::string& name, const std::string& variable, const Environment& session) {
    const auto named = session.find(variable);
    for (const std::string& path :
         {named == session.end() ? std::string() : named->second, QUORVEL_LIBEXEC "/" + name,
          "/usr/libexec/quorvel/" + name, "/usr/local/libexec/quorvel/" + name}) {
        if (path.starts_with('/') && isExecutableFile(path)) {
            return path;
        }
    }
    return std::nullopt;
}

} // namespace quorvel
