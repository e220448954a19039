#pragma once

#include "WebHost/Certificates/CertificateExceptions.h"
#include "WebHost/Questions/PermissionStore.h"
#include "WebHost/Settings/SiteSettings.h"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

/// A clone's Site Settings, independent of the toolkit that shows them.
namespace quorvel {

/// What the window with the settings reads and changes.
struct SettingsServices {
    std::string name{}; ///< the clone's
    SiteSettingsStore* settings = nullptr;
    PermissionStore* permissions = nullptr;
    CertificateExceptions* certificates = nullptr;
    std::function<void()> settingsChanged{};
    /// These answers were taken back.
    std::function<void(const std::vector<PermissionStore::Answer>&)> permissionsTaken{};
    std::function<int()> zoom{}; ///< in percent
    std::function<void(int)> zoomTo{};
};

/// Words of that window.
namespace SettingsText {

inline constexpr const char* userAgent =
    "The user agent tells sites which browser this is; some refuse unknown ones. It applies to "
    "pages loaded from now on.";
inline constexpr const char* links =
    "Links to these sites open as you say, whichever site they are on.";
inline constexpr const char* noLinks = "There are no rules.";
inline constexpr const char* permissions =
    "A page that has lost a permission to see, hear or locate you is loaded again.";
inline constexpr const char* noPermissions = "No site has asked for anything.";
inline constexpr const char* certificates =
    "A certificate that you remove is refused from the next start of this window on.";
inline constexpr const char* noCertificates = "No certificate was accepted.";
inline constexpr const char* data =
    "What sites keep in this clone: logins, settings, offline data.";
inline constexpr const char* noData = "No site has stored anything.";
inline constexpr const char* dataCleared = "The data is cleared.";
inline constexpr const char* clearing =
    "You will be logged out of all sites in this clone. Other clones keep their data.";

/// Returns the window's title.
[[nodiscard]] std::string title(const std::string& cloneName);
/// Returns the question whether all data of the clone is to be removed.
[[nodiscard]] std::string clearsData(const std::string& cloneName);

} // namespace SettingsText

/// One line of a list that the user can remove.
struct RemovableRow {
    std::string text{};
    std::string removes{}; ///< what the button does, for assistive technology
    std::function<void()> remove{};
};

/// Changes the settings, and lists what the user can remove. Each change returns why it failed, as
/// a sentence; empty if it didn't.
class SettingsEditor {
public:
    using Rows = std::vector<RemovableRow>;
    /// Called after a row's removal, with why it failed; empty if it didn't.
    using Removed = std::function<void(const std::string& problem)>;

    /// Must outlive its rows.
    explicit SettingsEditor(SettingsServices services) : services_(std::move(services)) {}

    [[nodiscard]] const SettingsServices& services() const { return services_; }
    [[nodiscard]] const SiteSettings& settings() const { return services_.settings->settings(); }

    /// Applies the edit and writes the settings.
    std::string change(const std::function<void(SiteSettings&)>& edit);
    /// Adds a rule for the host in what the user typed.
    std::string addRule(std::string_view typed, LinkPlace place);
    /// Forgets all remembered permissions.
    std::string removePermissions();

    /// Returns a row for each rule for links.
    [[nodiscard]] Rows links(const Removed& removed);
    /// Returns a row for each remembered permission.
    [[nodiscard]] Rows permissions(const Removed& removed);
    /// Returns a row for each accepted certificate.
    [[nodiscard]] Rows certificates(const Removed& removed);

    /// Returns why a file of the settings can't be used, as a sentence; empty if all can.
    [[nodiscard]] std::string fileProblem() const;

private:
    SettingsServices services_;
};

} // namespace quorvel
