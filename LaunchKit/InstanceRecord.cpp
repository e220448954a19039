#include "LaunchKit/InstanceRecord.h"

#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Platform/files/FileSystem.h"

namespace quorvel {

std::optional<std::filesystem::path> InstanceRecord::iconURL() const {
    std::filesystem::path icon = iconOf(bundleURL);
    return itemExists(icon) ? std::optional(std::move(icon)) : std::nullopt;
}

} // namespace quorvel
