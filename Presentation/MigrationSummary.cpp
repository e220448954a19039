#include "Presentation/MigrationSummary.h"

#include "Presentation/JoinedText.h"

namespace quorvel {
namespace {

// Empty if nothing was moved.
std::string movedSentence(const InstanceLauncher::Migration& migration,
                          const Translate& translate) {
    const std::string list = joined(movedParts(migration, translate), ", ");
    return list.empty()
               ? list
               : filledIn(translate("Migration", "Moved %1 into your shared folders."), {list});
}

} // namespace

std::vector<std::string> movedParts(const InstanceLauncher::Migration& migration,
                                    const Translate& translate) {
    std::vector<std::string> parts;
    for (const std::string_view folder : InstanceLauncher::sharedUserFolders) {
        const auto found = migration.moved.find(std::string(folder));
        if (found != migration.moved.end() && found->second > 0) {
            parts.push_back(filledIn(translate("Migration", "%1 from %2"),
                                     {std::to_string(found->second), folder}));
        }
    }
    return parts;
}

std::string sharingMessage(const std::string& name, const InstanceLauncher::Migration& migration,
                           const Translate& translate) {
    const std::string moved = movedSentence(migration, translate);
    if (moved.empty()) {
        return filledIn(translate("Migration",
                                  "“%1” now shares Downloads, Documents & Desktop with your Mac — "
                                  "nothing needed moving."),
                        {name});
    }
    return moved + " " + filledIn(translate("Migration", "“%1” now saves there."), {name});
}

std::string failureMessage(const InstanceLauncher::Migration& migration, const std::string& reason,
                           const Translate& translate) {
    const std::string moved = movedSentence(migration, translate);
    return moved.empty() ? reason : moved + " " + reason;
}

std::string unmovedItems(const InstanceLauncher::Migration& migration, const Translate& translate) {
    if (migration.unmoved.empty()) {
        return {};
    }
    std::vector<std::string> reasons;
    for (const auto& item : migration.unmoved) {
        reasons.push_back(item.reason);
    }
    return translate("Migration",
                     "Not everything could be moved, so the clone still has folders of its own:") +
           "\n" + shortList(reasons, translate);
}

} // namespace quorvel
