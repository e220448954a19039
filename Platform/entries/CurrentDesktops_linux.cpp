#include "Platform/entries/CurrentDesktops_linux.h"

#include "Base/SplitText.h"

#include <cstdlib>
#include <string_view>

namespace quorvel {

std::vector<std::string> currentDesktops() {
    const char* variable = std::getenv("XDG_CURRENT_DESKTOP");
    std::vector<std::string> desktops;
    for (std::string_view rest = variable == nullptr ? "" : variable; !rest.empty();) {
        desktops.emplace_back(takePart(rest, ':'));
    }
    return desktops;
}

} // namespace quorvel
