#include "WebHost/Storage/StoreIdentifier.h"

#include "Base/PathText.h"
#include "Base/RandomUuid.h"
#include "Base/WebCloneLayout.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/PlatformError.h"
#include "WebHost/Storage/WebRecords.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <optional>

namespace quorvel {
namespace fs = std::filesystem;
namespace {

struct Saved {
    std::string identifier{};
};

fs::path fileIn(const fs::path& home) {
    return joinAsText(home, webStoreName);
}

bool isUuid(const std::string& text) {
    static const std::string form = "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx";
    return std::equal(
        text.begin(), text.end(), form.begin(), form.end(), [](char found, char expected) {
            return expected == '-' ? found == '-'
                                   : std::isxdigit(static_cast<unsigned char>(found)) != 0;
        });
}

} // namespace

template<>
struct RecordTable<Saved> {
    static constexpr std::string_view name = "identifier of the web data";
    static constexpr auto fields =
        sortedByKey(std::array{Row<Saved>::of<&Saved::identifier>("identifier")});
};

namespace {

// Whether that folder has the store; unknown if its file can't be read.
std::optional<bool> names(const fs::path& home, const std::string& store) {
    Saved saved;
    if (!readWebRecord(fileIn(home), saved).empty()) {
        return std::nullopt;
    }
    return saved.identifier == store;
}

bool isCopy(const fs::path& home, const std::string& store, const StoreOwner& ownerOf) {
    const std::string owner = ownerOf(store);
    return !owner.empty() && !isSameItem(owner, home) && names(owner, store) != false;
}

bool isAbandoned(const std::string& store, const StoreOwner& ownerOf) {
    const std::string owner = ownerOf(store);
    if (owner.empty()) {
        return false;
    }
    const fs::path home = owner;
    return itemOrLinkExists(home) ? names(home, store) == false : itemExists(home.parent_path());
}

} // namespace

std::string storeIdentifier(const fs::path& home, const StoreOwner& ownerOf) {
    KeptWebFile file(home, fileIn(home));
    Saved saved;
    file.read(saved);
    if (!isUuid(saved.identifier) || isCopy(home, saved.identifier, ownerOf)) {
        saved.identifier = randomUuid();
        if (!file.write(saved)) {
            throw PlatformError(std::make_error_code(std::errc::io_error), file.path(), "written");
        }
    }
    return saved.identifier;
}

std::vector<std::string> abandonedStores(const std::vector<std::string>& stores,
                                         const StoreOwner& ownerOf) {
    std::vector<std::string> abandoned;
    std::copy_if(stores.begin(), stores.end(), std::back_inserter(abandoned),
                 [&](const std::string& store) { return isAbandoned(store, ownerOf); });
    return abandoned;
}

} // namespace quorvel
