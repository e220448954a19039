#include "LaunchKit/DeletedData.h"

namespace quorvel {
namespace {

std::string items(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " item" : " items");
}

} // namespace

std::string DeletedData::description() const {
    if (!wrapperReason.empty()) {
        const std::string gone = outcome == Case::removed
                                     ? "The data folder " + folder.string() + " is gone"
                                     : "Of the data folder " + folder.string() + " a part is gone";
        return gone + ", but the clone could not be removed as a whole. " + wrapperReason +
               (reason.empty() ? "" : ". " + reason);
    }
    switch (outcome) {
    case Case::kept:
        return "The clone is gone, but its data folder " + folder.string() + " is still there. " +
               reason;
    case Case::partly:
        return "The clone is gone, but of its data folder " + folder.string() +
               " only a part is: " + items(removedItems) + " removed, " + items(remainingItems) +
               " left. " + reason;
    case Case::spared:
        return "The data folder was kept: " + folder.string();
    case Case::untouched:
    case Case::removed:
        break;
    }
    return {};
}

} // namespace quorvel
