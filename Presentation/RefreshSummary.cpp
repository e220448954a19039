#include "Presentation/RefreshSummary.h"

#include "Presentation/JoinedText.h"

namespace quorvel {
namespace {

std::string refreshedText(std::size_t count, const Translate& translate) {
    return count == 1 ? translate("Refresh", "1 wrapper was refreshed.")
                      : filledIn(translate("Refresh", "%1 wrappers were refreshed."),
                                 {std::to_string(count)});
}

std::string failedText(std::size_t count, const Translate& translate) {
    return count == 1 ? translate("Refresh", "1 wrapper couldn’t be refreshed:")
                      : filledIn(translate("Refresh", "%1 wrappers couldn’t be refreshed:"),
                                 {std::to_string(count)});
}

std::string skippedText(std::size_t count, const Translate& translate) {
    return count == 1 ? translate("Refresh", "Cancelled before the last one.")
                      : filledIn(translate("Refresh", "Cancelled before the last %1."),
                                 {std::to_string(count)});
}

} // namespace

std::string refreshMessage(const RefreshSummary& summary, const Translate& translate) {
    std::string text;
    if (summary.refreshed > 0) {
        text = refreshedText(summary.refreshed, translate);
    } else if (summary.skipped > 0 || !summary.failures.empty()) {
        text = translate("Refresh", "No wrapper was refreshed.");
    } else {
        text = summary.current == 1 ? translate("Refresh", "The wrapper is up to date.")
                                    : translate("Refresh", "All wrappers are up to date.");
    }
    if (summary.skipped > 0) {
        text += " " + skippedText(summary.skipped, translate);
    }
    if (!summary.failures.empty()) {
        text += "\n\n" + failedText(summary.failures.size(), translate) + "\n" +
                shortList(summary.failures, translate);
    }
    if (!summary.notes.empty()) {
        text += "\n\n" + shortList(summary.notes, translate);
    }
    return text;
}

} // namespace quorvel
