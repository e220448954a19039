#include "Platform/processes/LoadedModule.h"

namespace quorvel {

bool modulesBelongToBundles() noexcept {
    return false;
}

} // namespace quorvel
