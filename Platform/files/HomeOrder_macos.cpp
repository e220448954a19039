#include "Platform/files/HomeOrder.h"

namespace quorvel {

bool homeVariableComesFirst() {
    return false;
}

} // namespace quorvel
