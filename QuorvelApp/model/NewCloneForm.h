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
    std::string automaticName{}; ///< what `autoNameIfNeeded` gave last; empty once it was edited
    Strategy strategy = Strategy::homeOverride;
    bool launchAfter = true;
    bool shareUserFolders = true;
    bool creating = false; ///< a creation is under way
    bool showAdvanced = false;
    std::string dataPath{};
    std::string argsText{};
    std::string envText{}; ///< one KEY=VALUE a line
    std::optional<std::filesystem::path> customIcon{};
    bool hideDockIcon = false;
    std::string plistText{}; ///< one KEY=VALUE a line
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

    /// Whether there is something to run.
    [[nodiscard]] bool hasTarget() const;
    [[nodiscard]] bool canCreate() const;
    /// The trimmed name; "Name" while there is none.
    [[nodiscard]] std::string cloneNameOrPlaceholder() const;
    /// "Saved to ~/Applications/NAME.app".
    [[nodiscard]] std::string savedToText() const;
    /// The warning that the clone takes the place of one of these; empty when it does not.
    [[nodiscard]] std::string replacementText(const std::vector<InstanceRecord>& clones) const;
    /// What stands below the strategy.
    [[nodiscard]] std::string strategyCaption() const;
    /// The request that the form amounts to. Can't fail; the factory judges it.
    [[nodiscard]] WrapperFactory::Request makeRequest() const;

    /// The apps whose name contains the trimmed search text, in their order.
    [[nodiscard]] std::vector<InstalledApp>
    filtered(const std::vector<InstalledApp>& catalog) const;
    /// What stands in place of the grid when `filtered` is empty.
    [[nodiscard]] std::string noAppsText() const;

    /// Takes the app as target under that name, with every advanced option back at its default.
    void select(const InstalledApp& app, std::string suggestedName);
    /// Names a web or command clone after its target, unless it has a name from elsewhere. A target
    /// that gives no name takes an earlier one's back.
    void autoNameIfNeeded();
    /// The name is the user's from here on.
    void nameEdited();
    void chooseFile(const std::filesystem::path& file);
    void chooseCommand(const std::filesystem::path& command);
    /// `folder` becomes the data location, with the clone's name behind it.
    void chooseDataFolder(const std::filesystem::path& folder);

    void beginDetecting();
    void detected(Strategy recommended);
    void detectionFailed(std::string_view description);
};

/// One entry for each line with "=" and a key before it. The key is trimmed, the value is not; the
/// last line of a key counts.
[[nodiscard]] std::map<std::string, std::string> parseKeyValues(std::string_view text);

/// The pieces between white space of every kind.
[[nodiscard]] std::vector<std::string> splitIntoWords(std::string_view text);

/// The strategies that can be chosen, in the order shown.
inline constexpr std::array selectableStrategies{
    Strategy::homeOverride, Strategy::containerRedirect, Strategy::wrapperIdentity};

} // namespace quorvel
