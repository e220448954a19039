#include "LaunchKit/Copying/DataSize.h"

#include "LaunchKit/Homes/DataFolderGuard.h"
#include "Platform/files/FolderWalk.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace quorvel {

std::optional<std::uintmax_t> dataSizeOf(const InstanceConfig& config, std::size_t most,
                                         const std::atomic<bool>& cancelled) {
    const DataFolder data = dataFolderOf(config);
    if (data.isNone) {
        return 0;
    }
    const FileHandle root(
        ::open(data.path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    const auto mount = root.descriptor() != -1 ? mountOf(root.descriptor()) : std::nullopt;
    if (!mount) {
        return 0;
    }
    FolderWalk walk(root.descriptor(), *mount);
    std::uintmax_t bytes = 0;
    for (std::size_t items = 0; const auto step = walk.next(); ++items) {
        struct stat facts {};
        if (items == most || cancelled) {
            return std::nullopt;
        }
        if (step->kind == FolderWalk::Kind::item &&
            ::fstatat(step->folder, step->name, &facts, AT_SYMLINK_NOFOLLOW) == 0 &&
            S_ISREG(facts.st_mode)) {
            bytes += static_cast<std::uintmax_t>(facts.st_size);
        }
    }
    return bytes;
}

} // namespace quorvel
