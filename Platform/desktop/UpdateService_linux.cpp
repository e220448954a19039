#include "Platform/desktop/UpdateService.h"

namespace quorvel {

// Updates come with the distribution's packages.
std::unique_ptr<UpdateService> makeSystemUpdateService() {
    return nullptr;
}

} // namespace quorvel
