#include "Platform/homes/HomeOrder.h"

namespace quorvel {

bool homeVariableComesFirst() {
    return false;
}

} // namespace quorvel
