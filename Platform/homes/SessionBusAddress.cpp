#include "Platform/homes/SessionBusAddress.h"

#include "Base/PathText.h"
#include "Platform/files/FileSystem.h"
#include "Platform/homes/FolderVariable.h"

namespace quorvel {

std::optional<std::string> sessionBusAddress(const Environment& session) {
    if (std::string named = valueOf(session, sessionBusVariable); !named.empty()) {
        return named;
    }
    const std::string runtime = folderVariable(session, "XDG_RUNTIME_DIR", "");
    const std::string usual = joinAsText(runtime, "bus");
    return !runtime.empty() && itemExists(usual) ? std::optional("unix:path=" + usual)
                                                 : std::nullopt;
}

} // namespace quorvel
