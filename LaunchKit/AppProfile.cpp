#include "LaunchKit/AppProfile.h"

#include "LaunchKit/Records/RecordReader.h"
#include "LaunchKit/Records/RecordWriter.h"

#include <algorithm>
#include <utility>

namespace quorvel {
namespace {

using ProfileRow = Row<AppProfile>;

} // namespace

template<>
struct RecordTable<AppProfile> {
    static constexpr std::string_view name = "profile";
    static constexpr auto fields = sortedByKey(std::array{
        ProfileRow::required<&AppProfile::bundleId>("bundleId"),
        ProfileRow::required<&AppProfile::displayName>("displayName"),
        ProfileRow::required<&AppProfile::sandboxed>("sandboxed"),
        ProfileRow::required<&AppProfile::strategy>("strategy"),
        ProfileRow::required<&AppProfile::singleton>("singleton"),
        ProfileRow::required<&AppProfile::prefsLeak>("prefsLeak"),
        ProfileRow::required<&AppProfile::extraArgs>("extraArgs"),
        ProfileRow::required<&AppProfile::verifiedOn>("verifiedOn"),
        ProfileRow::required<&AppProfile::confidence>("confidence"),
        ProfileRow::of<&AppProfile::environment>("environment"),
        ProfileRow::of<&AppProfile::dataFolders>("dataFolders"),
    });
};

AppProfile AppProfile::reconciled(const std::string& currentSignature) const {
    AppProfile copy = *this;
    const bool trusted = confidence == Confidence::verified || confidence == Confidence::community;
    if (trusted &&
        std::find(verifiedOn.begin(), verifiedOn.end(), currentSignature) == verifiedOn.end()) {
        copy.confidence = Confidence::autoDetected;
    }
    return copy;
}

std::string AppProfile::encodedJSON() const {
    std::optional<std::string> json = writeRecord(*this);
    if (!json) {
        throw ProfileError("The profile contains text that is not valid UTF-8.");
    }
    return std::move(*json);
}

AppProfile AppProfile::fromJson(std::string_view json) {
    std::string text(json);
    AppProfile profile;
    if (const std::string faults = readRecord(text, profile); !faults.empty()) {
        throw ProfileError(faults);
    }
    return profile;
}

std::string operatingSystemSignature(const OperatingSystemVersion& version) {
    if (!version.distribution.empty()) {
        return version.distribution;
    }
    return "macOS " + std::to_string(version.major) + "." + std::to_string(version.minor);
}

} // namespace quorvel
