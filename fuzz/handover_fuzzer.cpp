// Feeds text to the reader of what one start of a web clone passes on to another.
#include "WebHost/Handover.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using quorvel::WebHandover;
    const auto handover = WebHandover::parse({reinterpret_cast<const char*>(data), size});
    if (handover && WebHandover::parse(handover->text()) != handover) {
        std::abort();
    }
    return 0;
}
