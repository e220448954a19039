#include "LaunchKit/Changes/DeletedData.h"

namespace quorvel {
namespace {

std::string items(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " item" : " items");
}

} // namespace

std::string DeletedData::description() const {
    if (!wrapperReason.empty()) {
        const std::string gone =
            outcome == Case::removed
                ? "The data folder " + folder.string() + " was deleted"
                : "Part of the data folder " + folder.string() + " was deleted";
        return gone + ", but the clone could not be removed completely. " + wrapperReason +
               (reason.empty() ? "" : ". " + reason);
    }
    switch (outcome) {
    case Case::kept:
        return "The clone was deleted, but its data folder " + folder.string() + " was not. " +
               reason;
    case Case::partly:
        return "The clone was deleted, but only part of its data folder " + folder.string() + ": " +
               items(removedItems) + " removed, " + items(remainingItems) + " left. " + reason;
    case Case::spared:
        return "The data folder was kept: " + folder.string();
    case Case::untouched:
    case Case::removed:
        break;
    }
    return {};
}

} // namespace quorvel
