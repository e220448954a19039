// Feeds a page to the reader of what it says about itself.
#include "WebHost/Preview/SiteHead.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const quorvel::SiteHead head = quorvel::siteHead({reinterpret_cast<const char*>(data), size});
    constexpr std::size_t longestTitle = 1000;
    constexpr std::size_t mostIcons = 50;
    if (head.title.size() > longestTitle || head.icons.size() > mostIcons) {
        std::abort();
    }
    return 0;
}
