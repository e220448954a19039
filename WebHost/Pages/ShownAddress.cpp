#include "WebHost/Pages/ShownAddress.h"

#include "WebHost/Links/WebAddress.h"

namespace quorvel {

void ShownAddress::reported(const std::string& address) {
    const std::string origin = originOf(address);
    if (!origin.empty() && origin == originOf(shown_)) {
        shown_ = address;
    }
}

} // namespace quorvel
