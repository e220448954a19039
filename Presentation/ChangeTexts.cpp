#include "Presentation/ChangeTexts.h"

#include "Presentation/JoinedText.h"

namespace quorvel {

std::vector<std::string> changeNotes(const ChangedClone& changed, bool isRunning,
                                     const Translate& translate) {
    std::vector<std::string> notes;
    if (changed.isChanged && isRunning) {
        notes.push_back(filledIn(
            translate("Change", "“%1” is running. The change takes effect at its next start."),
            {changed.record.config.displayName}));
    }
    if (!changed.kept.empty()) {
        notes.push_back(
            filledIn(translate("Change", "Changed in “%1” by other means, so kept as it is: %2"),
                     {changed.record.config.displayName, joined(changed.kept, ", ")}));
    }
    notes.insert(notes.end(), changed.warnings.begin(), changed.warnings.end());
    return notes;
}

std::string unreadableText(const std::filesystem::path& clone, const Translate& translate) {
    return filledIn(translate("Change", "The clone at %1 can’t be read back."), {clone.string()});
}

std::string reasonText(StaleReason reason, const Translate& translate) {
    switch (reason) {
    case StaleReason::runner:
        return translate("Change", "runner");
    case StaleReason::arguments:
        return translate("Change", "arguments");
    case StaleReason::icon:
        break;
    }
    return translate("Change", "icon");
}

} // namespace quorvel
