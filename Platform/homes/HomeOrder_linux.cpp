#include "Platform/homes/HomeOrder.h"

namespace quorvel {

bool homeVariableComesFirst() {
    return true;
}

} // namespace quorvel
