#include "Platform/processes/LocalSocket.h"

namespace quorvel::LocalSocket {

FileHandle listenIn(const std::filesystem::path& /*folder*/, const std::string& /*name*/) {
    return FileHandle(-1);
}

std::string ask(const std::filesystem::path& /*folder*/, const std::string& /*name*/,
                const std::string& /*text*/, std::chrono::milliseconds /*patience*/) {
    return {};
}

} // namespace quorvel::LocalSocket
