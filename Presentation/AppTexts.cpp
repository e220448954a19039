#include "Presentation/AppTexts.h"

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/Targets/NoSessionBus.h"

namespace quorvel {

std::optional<std::string> environmentCost(const std::map<std::string, std::string>& environment,
                                           const Translate& translate) {
    if (!takeBusAway(environment)) {
        return std::nullopt;
    }
    return translate("AppTexts",
                     "Without the session bus, the clone runs beside the original, but shows no "
                     "notifications and can’t use the desktop’s portals and keyring.");
}

std::optional<std::string> groupingNote(WindowGrouping grouping, const Translate& translate) {
    switch (grouping) {
    case WindowGrouping::own:
        return std::nullopt;
    case WindowGrouping::ownOnX11:
        return translate("AppTexts", "On Wayland, the dock may show the clone’s windows together "
                                     "with those of the original.");
    case WindowGrouping::shared:
        break;
    }
    return translate("AppTexts",
                     "The dock may show the clone’s windows together with those of the original.");
}

std::optional<std::string> snapReason(const AppBundle& app, const Translate& translate) {
    if (!app.desktop || app.desktop->program.packaging != ResolvedProgram::Packaging::snap) {
        return std::nullopt;
    }
    const std::string& instance = app.desktop->entry.snapInstance;
    const std::string name =
        instance.empty() ? app.desktop->program.launcher.filename().string() : instance;
    return filledIn(
        translate("AppTexts",
                  "It is a Snap: its data stays in the user’s own home, so a clone would share it. "
                  "Snap itself can install a second copy with data of its own: “sudo snap set "
                  "system experimental.parallel-instances=true”, then “sudo snap install %1_2”."),
        {name});
}

} // namespace quorvel
