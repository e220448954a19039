// Feeds libFuzzer's inputs to the icon reader and checks its guarantees.

#include "LaunchKit/Icons/IcnsFile.h"

#include <QImage>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

namespace {

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto file = quorvel::IcnsFile::parse({reinterpret_cast<const char*>(data), size});
    if (!file) {
        return 0;
    }
    bool any = false;
    constexpr std::size_t enough = 24;
    for (std::size_t index = 0; index < std::min(file->entries().size(), enough); ++index) {
        const quorvel::IcnsEntry& entry = file->entries()[index];
        const QImage image = file->decode(index);
        require(image.isNull() || image.size() == QSize(entry.width, entry.height));
        any = any || !image.isNull();
    }
    require(!any || !file->nearest(64).isNull() || file->entries().size() > enough);
    return 0;
}
