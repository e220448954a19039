#include "ProbeKit/LeakRules.h"

#include "LaunchKit/AppBundle.h"

#include <algorithm>
#include <iterator>

namespace quorvel {
namespace {

LeakBucket bucketFor(DataPlace::Kind kind) {
    switch (kind) {
    case DataPlace::Kind::settings:
        return LeakBucket::prefsLeak;
    case DataPlace::Kind::containers:
        return LeakBucket::containerLeak;
    case DataPlace::Kind::data:
        break;
    }
    return LeakBucket::dataLeak;
}

// Returns the path relative to the folder; std::nullopt if it isn't below it.
std::optional<std::string_view> pathBelow(const std::string& folder, const std::string& path) {
    const std::size_t length = folder == "/" ? 0 : folder.size();
    if (path.size() <= length + 1 || !path.starts_with(folder) || path[length] != '/') {
        return std::nullopt;
    }
    return std::string_view(path).substr(length + 1);
}

struct Found {
    const DataPlace* place = nullptr;
    std::string_view rest{};
};

// Returns the first place that contains the path.
Found placeOf(const std::vector<DataPlace>& places, const std::string& path) {
    for (const DataPlace& place : places) {
        if (const auto rest = pathBelow(place.folder, path)) {
            return {place.hiddenOnly && !rest->starts_with('.') ? nullptr : &place, *rest};
        }
    }
    return {};
}

} // namespace

LeakRules::LeakRules(const AppBundle& app, std::string realLibrary, std::vector<DataPlace> places)
    : isBundle_(!app.desktop),
      bundleId_(app.bundleId),
      names_(app),
      realLibrary_(std::move(realLibrary)),
      places_(std::move(places)) {}

std::vector<std::string> LeakRules::watchedFolders(const std::string& fakeHome) const {
    std::vector<std::string> folders{fakeHome};
    if (isBundle_) {
        folders.push_back(realLibrary_);
        return folders;
    }
    for (const DataPlace& place : places_) {
        folders.push_back(place.folder);
    }
    return folders;
}

bool LeakRules::isOfInterest(const std::string& folder, const std::string& fakeHome) const {
    if (isBundle_ || pathBelow(fakeHome, folder)) {
        return true;
    }
    const auto [place, rest] = placeOf(places_, folder);
    if (place == nullptr) {
        return false;
    }
    const auto level = static_cast<std::size_t>(std::count(rest.begin(), rest.end(), '/')) + 1;
    return level <= place->levels || names_.appearIn(rest);
}

LeakBucket LeakRules::bucketOf(const std::string& path, const std::string& fakeHome) const {
    if (path.starts_with(fakeHome)) {
        return LeakBucket::captured;
    }
    return isBundle_ ? bucketInLibrary(path) : bucketInPlaces(path);
}

std::optional<Settings> LeakRules::sharedSettings() const {
    Settings all;
    for (const DataPlace& place : places_) {
        if (!place.isShared || isBundle_) {
            continue;
        }
        auto settings = quorvel::sharedSettings(place);
        if (!settings) {
            return std::nullopt;
        }
        all.merge(*settings);
    }
    return all;
}

void LeakRules::setOthersSettingsAside(const std::optional<Settings>& before,
                                       const std::optional<Settings>& after,
                                       LeakBuckets& buckets) const {
    const auto found = buckets.find(LeakBucket::prefsLeak);
    if (isBundle_ || found == buckets.end() || !before || !after ||
        ownSettingsDiffer(*before, *after) || ownSettingsDiffer(*after, *before)) {
        return;
    }
    std::vector<std::string>& leaks = found->second;
    const auto others =
        std::stable_partition(leaks.begin(), leaks.end(),
                              [this](const std::string& path) { return !isSharedFile(path); });
    std::vector<std::string>& irrelevant = buckets[LeakBucket::irrelevant];
    irrelevant.insert(irrelevant.end(), std::make_move_iterator(others),
                      std::make_move_iterator(leaks.end()));
    leaks.erase(others, leaks.end());
    if (leaks.empty()) {
        buckets.erase(found);
    }
}

bool LeakRules::isSharedFile(const std::string& path) const {
    const DataPlace* place = placeOf(places_, path).place;
    return place != nullptr && place->isShared;
}

// Whether a setting of the application's in `one` is missing or different in `other`.
bool LeakRules::ownSettingsDiffer(const Settings& one, const Settings& other) const {
    return std::any_of(one.begin(), one.end(), [&](const auto& setting) {
        const auto counterpart = other.find(setting.first);
        return names_.appearIn(setting.first) &&
               (counterpart == other.end() || counterpart->second != setting.second);
    });
}

LeakBucket LeakRules::bucketInLibrary(const std::string& path) const {
    const auto below = [&](std::string_view folder) {
        return path.starts_with(realLibrary_) &&
               std::string_view(path).substr(realLibrary_.size()).starts_with(folder);
    };
    if (below("/Containers/" + bundleId_)) {
        return LeakBucket::containerLeak;
    }
    if (below("/Preferences") && names_.appearIn(path)) {
        return LeakBucket::prefsLeak;
    }
    if (below("/Application Support") && names_.appearIn(path)) {
        return LeakBucket::dataLeak;
    }
    return LeakBucket::irrelevant;
}

// Other programs write there as well, so only what names the application counts as its own. A home
// that is named like the application does not make everything in it the application's.
LeakBucket LeakRules::bucketInPlaces(const std::string& path) const {
    const auto [place, rest] = placeOf(places_, path);
    if (place == nullptr || (!place->isShared && !names_.appearIn(rest))) {
        return LeakBucket::irrelevant;
    }
    return bucketFor(place->kind);
}

} // namespace quorvel
