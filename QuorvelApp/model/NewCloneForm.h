#pragma once

#include "LaunchKit/AppCatalog.h"
#include "LaunchKit/InstanceRegistry.h"
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

/// What the new-clone sheet holds, and what follows from it: a value without any widget. A new
/// sheet begins with these defaults.
struct NewCloneForm {
    Q_DECLARE_TR_FUNCTIONS(NewCloneForm)

public:
    ShortcutKind shortcutType = ShortcutKind::app;
    std::string search{}; ///< the app picker's filter
    std::optional<InstalledApp> selected{};
    std::string webURL{};
    std::string filePath{};
    std::string commandPathText{};
    std::string commandArgsText{};
    std::string workdir{};
    std::string cloneName{};
    std::string automaticName{}; ///< the last name from `autoNameIfNeeded`; empty once edited
    Strategy strategy = Strategy::homeOverride;
    bool launchAfter = true;
    bool shareUserFolders = true;
    bool creating = false; ///< a creation is under way
    bool showAdvanced = false;
    std::string dataPath{};
    std::string argsText{};
    std::string envText{}; ///< one KEY=VALUE per line
    std::optional<std::filesystem::path> customIcon{};
    bool hideDockIcon = false;
    std::string plistText{}; ///< one KEY=VALUE per line
    bool registerBrowser = false;
    bool openWith = false;
    std::string iconLabelText{};
    std::string iconLabelColor = "#FFFFFF"; ///< as `hexRGB` writes it
    bool menuBarIcon = false;
    bool menuBarTemplate = false;
    std::string strategyReason{};
    bool selectedSandboxed = false;
    bool detecting = false; ///< a detection is under way
    std::optional<std::string> detectNote{};

    /// Returns whether there is something to run.
    [[nodiscard]] bool hasTarget() const;
    [[nodiscard]] bool canCreate() const;
    /// Returns the trimmed name, or "Name" if it is empty.
    [[nodiscard]] std::string cloneNameOrPlaceholder() const;
    /// Returns "Saved to ~/Applications/NAME.app".
    [[nodiscard]] std::string savedToText() const;
    /// Returns the warning that creating the clone replaces one of these; empty if it does not.
    [[nodiscard]] std::string replacementText(const std::vector<InstanceRecord>& clones) const;
    /// Returns the caption below the strategy.
    [[nodiscard]] std::string strategyCaption() const;
    /// Returns the request for this form. Can't fail; the factory validates it.
    [[nodiscard]] WrapperFactory::Request makeRequest() const;

    /// Returns the apps whose name contains the trimmed search text, in their order.
    [[nodiscard]] std::vector<InstalledApp>
    filtered(const std::vector<InstalledApp>& catalog) const;
    /// Returns the text shown instead of the grid when `filtered` is empty.
    [[nodiscard]] std::string noAppsText() const;

    /// Takes the app as target under that name, with every advanced option back at its default.
    void select(const InstalledApp& app, std::string suggestedName);
    /// Names a web or command clone after its target, unless it has another name. A target without
    /// a usable name removes an earlier automatic one.
    void autoNameIfNeeded();
    /// Marks the name as the user's own, which is never replaced automatically.
    void nameEdited();
    /// Takes the file as target, and its name as the clone's if there is none.
    void chooseFile(const std::filesystem::path& file);
    /// Takes the command as target, and names the clone after it if needed.
    void chooseCommand(const std::filesystem::path& command);
    /// Makes the data location `folder` followed by the clone's name.
    void chooseDataFolder(const std::filesystem::path& folder);

    /// Notes that a detection is under way.
    void beginDetecting();
    /// Takes over what the detection recommends.
    void detected(Strategy recommended);
    /// Notes why the detection failed; the strategy stays.
    void detectionFailed(std::string_view description);
};

/// Returns one entry for each line with "=" and a key before it. The key is trimmed, the value is
/// not; the last line of a key counts.
[[nodiscard]] std::map<std::string, std::string> parseKeyValues(std::string_view text);

/// Returns the pieces between white space of every kind.
[[nodiscard]] std::vector<std::string> splitIntoWords(std::string_view text);

/// The strategies that can be chosen, in the order shown.
inline constexpr std::array selectableStrategies{
    Strategy::homeOverride, Strategy::containerRedirect, Strategy::wrapperIdentity};

} // namespace quorvel
