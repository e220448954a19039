#include "Platform/removal/FileRemoval.h"

#include "Platform/files/ItemRelation.h"
#include "Platform/files/PlatformError.h"
#include "Platform/homes/UserPaths.h"
#include "Platform/removal/ItemRemoval.h"

#include <algorithm>

namespace quorvel {
namespace fs = std::filesystem;

bool holdsUserHome(const fs::path& path) {
    const ComparedItem place(path);
    const std::vector<std::string> homes = UserPaths::allHomes();
    return std::any_of(homes.begin(), homes.end(), [&](const std::string& home) {
        return place.relationTo(home) != Relation::unrelated;
    });
}

void removeItem(const fs::path& path) {
    const std::optional<ItemRemoval> item = ItemRemoval::of(path);
    if (!item) {
        throw PlatformError(std::make_error_code(std::errc::no_such_file_or_directory), path,
                            "removed");
    }
    item->refuseMounts();
    if (const RemovalReport report = item->remove(); report.failure) {
        throw PlatformError(*report.failure);
    }
}

} // namespace quorvel
