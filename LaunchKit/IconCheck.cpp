#include "LaunchKit/IconCheck.h"

#include "LaunchKit/Icons/IcnsFile.h"

namespace quorvel {

bool isDrawableIcon(const std::filesystem::path& file) {
    constexpr int side = 64; // of the picture that is decoded, where there are several
    const auto container = IcnsFile::read(file);
    return container && container->isDecodable(side);
}

} // namespace quorvel
