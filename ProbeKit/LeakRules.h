#pragma once

#include "Platform/watching/DataPlaces.h"
#include "ProbeKit/AppNames.h"
#include "ProbeKit/Models.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorvel {

/// Says what an application's writes mean, by the folders they go to.
class LeakRules {
public:
    /// `places` count for an application that is not a bundle, the user's Library for a bundle.
    LeakRules(const AppBundle& app, std::string realLibrary, std::vector<DataPlace> places);

    /// Returns the folders to watch while an application runs with that home.
    [[nodiscard]] std::vector<std::string> watchedFolders(const std::string& fakeHome) const;

    /// Returns whether what happens inside the folder can matter. A real home may contain very many
    /// folders, of which the application uses few.
    [[nodiscard]] bool isOfInterest(const std::string& folder, const std::string& fakeHome) const;

    /// Returns where a write went; the first matching rule decides.
    [[nodiscard]] LeakBucket bucketOf(const std::string& path, const std::string& fakeHome) const;

    /// Returns the settings that all applications keep in the same files; std::nullopt if some
    /// can't be read.
    [[nodiscard]] std::optional<Settings> sharedSettings() const;

    /// Moves the writes to those files to the irrelevant ones, unless a setting whose name mentions
    /// the application differs between the two states. Without both states, nothing is moved.
    void setOthersSettingsAside(const std::optional<Settings>& before,
                                const std::optional<Settings>& after, LeakBuckets& buckets) const;

    [[nodiscard]] const std::string& realLibrary() const { return realLibrary_; }

private:
    [[nodiscard]] LeakBucket bucketInLibrary(const std::string& path) const;
    [[nodiscard]] LeakBucket bucketInPlaces(const std::string& path) const;
    [[nodiscard]] bool isSharedFile(const std::string& path) const;
    [[nodiscard]] bool ownSettingsDiffer(const Settings& one, const Settings& other) const;

    bool isBundle_;
    std::string bundleId_;
    AppNames names_;
    std::string realLibrary_;
    std::vector<DataPlace> places_;
};

} // namespace quorvel
