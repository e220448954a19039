#include "Platform/processes/LoadedModule.h"

namespace quorvel {

LoadedModule loadModule(const std::filesystem::path& /*module*/, const char* /*function*/) {
    return {nullptr, "no module is loaded on macOS"};
}

} // namespace quorvel
