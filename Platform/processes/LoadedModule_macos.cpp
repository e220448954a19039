#include "Platform/processes/LoadedModule.h"

namespace quorvel {

bool modulesBelongToBundles() noexcept {
    return true;
}

} // namespace quorvel
