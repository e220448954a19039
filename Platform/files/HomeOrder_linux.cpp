#include "Platform/files/HomeOrder.h"

namespace quorvel {

bool homeVariableComesFirst() {
    return true;
}

} // namespace quorvel
