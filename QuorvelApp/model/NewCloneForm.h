#pragma once

#include "LaunchKit/AppCatalog.h"
#include "LaunchKit/CloneOptions.h"
#include "LaunchKit/WrapperFactory.h"

#include <QCoreApplication>

#include <array>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

struct InstanceRecord;

/// The values of the sheet's advanced options and its strategy, all of which are reset to these
/// defaults when another app is chosen. The environment, the property-list overrides and the icon
/// label of the `CloneOptions` are derived from the texts here.
struct AppSettings : CloneOptions {
    std::string dataPath{};
    std::string argsText{};
    std::string envText{}; ///< one KEY=VALUE per line
    /// What `suggestEnvironment` entered into it, and the user may have changed since.
    std::map<std::string, std::string> suggestedEnvironment{};
    std::string plistText{}; ///< one KEY=VALUE per line
    std::optional<std::filesystem::path> customIcon{};
    bool hideDockIcon = false;
    std::string iconLabelText{};
    std::string iconLabelColor = "#FFFFFF"; ///< as `hexRGB` writes it
    IconLabel::Position iconLabelPosition = IconLabel::Position::bottom;
    std::optional<std::string> detectNote{};
    bool selectedSandboxed = false;
    bool canSeed = false; ///< the original has data that the clone could start with
    bool seed = false;    ///< the user wants it to
};

/// What a form shows of the clone that it edits, besides the values of its fields.
struct EditedCloneFacts {
    std::filesystem::path wrapper{};
    std::string place{}; ///< of the wrapper; begins with "~" if it is in the user's home
    /// The wrapper's icon; absent if that is the target's, or is to be.
    std::optional<std::filesystem::path> ownIcon{};
    bool hidesVariables = false; ///< the text of the environment leaves some out, which stay
    bool hidesEntries = false;   ///< the same of the property list
};

/// The state of the new-clone sheet and what follows from it: a value without any widget. A new
/// sheet starts with these defaults.
struct NewCloneForm : AppSettings {
    Q_DECLARE_TR_FUNCTIONS(NewCloneForm)

public:
    ShortcutKind shortcutType = ShortcutKind::app;
    std::string search{}; ///< the app picker's filter
    std::optional<InstalledApp> selected{};
    std::string webURL{};
    bool askingSite = false; ///< for its title and icon
    std::string filePath{};
    std::string commandPathText{};
    std::string commandArgsText{};
    std::string workdir{};
    std::string cloneName{};
    std::string automaticName{}; ///< the last one; empty once the name was edited
    bool launchAfter = true;
    bool creating = false; ///< a creation is under way
    bool showAdvanced = false;
    std::string strategyReason{};
    bool detecting = false; ///< a detection is under way
    /// Set if the form edits a clone. Its kind, target application, name and data folder are
    /// read-only; arguments are written as `quotedWords` does.
    std::optional<EditedCloneFacts> edited{};

    /// Returns whether a target is chosen or entered.
    [[nodiscard]] bool hasTarget() const;
    /// Returns whether there is a target and a name, and no creation is under way.
    [[nodiscard]] bool canCreate() const;
    /// Returns the trimmed name; "Name" while there is none.
    [[nodiscard]] std::string cloneNameOrPlaceholder() const;
    /// Returns "Saved to ~/Applications/NAME.app", or where the edited clone is.
    [[nodiscard]] std::string savedToText() const;
    /// Returns the warning that the clone replaces one of these; empty if it does not.
    [[nodiscard]] std::string replacementText(const std::vector<InstanceRecord>& clones) const;
    /// Returns the label for the icon; std::nullopt if there is no text for it.
    [[nodiscard]] std::optional<IconLabel> label() const;
    /// Returns the caption of the strategy: the detection's outcome, else the reason for the
    /// proposal.
    [[nodiscard]] std::string strategyCaption() const;
    /// Returns whether the clone is to start with the original's data.
    [[nodiscard]] bool startsWithSeed() const;
    /// Returns the request that the form describes. Can't fail; the factory validates it.
    [[nodiscard]] WrapperFactory::Request makeRequest() const;

    /// Returns the apps whose name contains the trimmed search text, in their order.
    [[nodiscard]] std::vector<InstalledApp>
    filtered(const std::vector<InstalledApp>& catalog) const;
    /// Returns what is shown instead of the grid when `filtered` is empty.
    [[nodiscard]] std::string noAppsText() const;

    /// Makes the app the target, names the clone, and resets all `AppSettings` to their defaults.
    void select(const InstalledApp& app, std::string suggestedName);
    /// Enters variables that the app needs, unless the user has entered some.
    void suggestEnvironment(const std::map<std::string, std::string>& variables);
    /// Removes the variable that takes the session bus away if it was suggested and is unchanged.
    void withdrawSuggestedBus();
    /// Returns what the clone gives up for the variables entered, in one sentence; empty if
    /// nothing.
    [[nodiscard]] std::string environmentCostText() const;
    /// Names a web or command clone after its target, unless it has a name of its own. If the
    /// target yields no name, removes an earlier automatic one.
    void autoNameIfNeeded();
    /// Names the clone after the title of its site, unless it has a name of its own.
    void siteNamed(const std::string& title);
    /// Returns to the icon before the chosen one: the edited clone's own, else the target's.
    void clearIcon();
    /// Records that the user edited the name.
    void nameEdited();
    /// Makes `file` the target, and names the clone after it if it has no name.
    void chooseFile(const std::filesystem::path& file);
    /// Makes `command` the target, and names the clone as `autoNameIfNeeded` does.
    void chooseCommand(const std::filesystem::path& command);
    /// Sets the data location to `folder` followed by the clone's name.
    void chooseDataFolder(const std::filesystem::path& folder);

    /// Records that a detection has started.
    void beginDetecting();
    /// Records the detection's recommendation, which is adopted unless it is `unsupported`.
    void detected(Strategy recommended);
    /// Adds the variables that a detection found to the text of the environment, except those that
    /// it sets already.
    void addEnvironment(const std::map<std::string, std::string>& variables);
    /// Records that the detection failed with this error.
    void detectionFailed(std::string_view description);

private:
    /// Returns whether the name is still the automatic one.
    [[nodiscard]] bool hasAutomaticName() const;
    /// Returns whether an automatic name may replace this one.
    [[nodiscard]] bool mayNameItself() const;
};

/// The strategies that can be chosen, in the order shown.
inline constexpr std::array selectableStrategies{
    Strategy::homeOverride, Strategy::containerRedirect, Strategy::wrapperIdentity};

} // namespace quorvel
