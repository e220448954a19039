#include "LaunchKit/AppProfile.h"

#include "LaunchKit/JsonText.h"
#include "LaunchKit/RawStrings.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <variant>

namespace quorvel {
namespace {

using Json = nlohmann::json;

constexpr RawStrings<SingletonTier, 5> tiers{{
    {SingletonTier::none, "none"},
    {SingletonTier::lockFile, "lockFile"},
    {SingletonTier::machPort, "machPort"},
    {SingletonTier::lsProhibited, "lsProhibited"},
    {SingletonTier::unknown, "unknown"},
}};

constexpr RawStrings<Confidence, 4> confidences{{
    {Confidence::verified, "verified"},
    {Confidence::community, "community"},
    {Confidence::autoDetected, "autoDetected"},
    {Confidence::broken, "broken"},
}};

// One row for each key: where its value lives. Reading and writing both walk it.
struct Field {
    using Member = std::variant<std::string AppProfile::*, bool AppProfile::*,
                                Strategy AppProfile::*, SingletonTier AppProfile::*,
                                Confidence AppProfile::*, std::vector<std::string> AppProfile::*>;

    const char* key;
    Member member;
};

constexpr std::array<Field, 9> fields{{
    {"bundleId", &AppProfile::bundleId},
    {"displayName", &AppProfile::displayName},
    {"sandboxed", &AppProfile::sandboxed},
    {"strategy", &AppProfile::strategy},
    {"singleton", &AppProfile::singleton},
    {"prefsLeak", &AppProfile::prefsLeak},
    {"extraArgs", &AppProfile::extraArgs},
    {"verifiedOn", &AppProfile::verifiedOn},
    {"confidence", &AppProfile::confidence},
}};

template<typename Value>
Json encoded(const Value& value) {
    if constexpr (std::is_enum_v<Value>) {
        return rawString(value);
    } else {
        return value;
    }
}

std::optional<Strategy> fromRawString(std::string_view text, Strategy /*kind*/) {
    return strategyFromRawString(text);
}
std::optional<SingletonTier> fromRawString(std::string_view text, SingletonTier /*kind*/) {
    return singletonTierFromRawString(text);
}
std::optional<Confidence> fromRawString(std::string_view text, Confidence /*kind*/) {
    return confidenceFromRawString(text);
}

template<typename Value>
void decode(const Json& json, Value& value) {
    if constexpr (std::is_enum_v<Value>) {
        const auto& text = json.get_ref<const std::string&>();
        const auto known = fromRawString(text, Value{});
        if (!known) {
            throw ProfileError("“" + text + "” is no known value.");
        }
        value = *known;
    } else {
        json.get_to(value);
    }
}

void decodeField(const Json& json, const Field& field, AppProfile& profile) {
    const auto value = json.find(field.key);
    if (value == json.end()) {
        throw ProfileError("The key “" + std::string(field.key) + "” is missing.");
    }
    try {
        std::visit([&](auto member) { decode(*value, profile.*member); }, field.member);
    } catch (const Json::exception&) {
        throw ProfileError("The value of “" + std::string(field.key) + "” is of the wrong type.");
    }
}

} // namespace

std::string_view rawString(SingletonTier tier) {
    return rawStringIn(tiers, tier);
}

std::string_view rawString(Confidence confidence) {
    return rawStringIn(confidences, confidence);
}

std::optional<SingletonTier> singletonTierFromRawString(std::string_view text) {
    return caseIn(tiers, text);
}

std::optional<Confidence> confidenceFromRawString(std::string_view text) {
    return caseIn(confidences, text);
}

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
    Json object = Json::object();
    for (const Field& field : fields) {
        std::visit([&](auto member) { object[field.key] = encoded(this->*member); }, field.member);
    }
    try {
        constexpr int indent = 2;
        return escapingSlashes(object.dump(indent));
    } catch (const Json::exception&) {
        throw ProfileError("The profile holds text that is not UTF-8.");
    }
}

AppProfile AppProfile::fromJson(std::string_view json) {
    Json object;
    try {
        object = Json::parse(json.begin(), json.end());
    } catch (const Json::exception& error) {
        throw ProfileError(std::string("The profile is not valid JSON: ") + error.what());
    }
    if (!object.is_object()) {
        throw ProfileError("The profile is not a JSON object.");
    }
    AppProfile profile;
    for (const Field& field : fields) {
        decodeField(object, field, profile);
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
