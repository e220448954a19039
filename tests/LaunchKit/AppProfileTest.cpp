#include "LaunchKit/AppProfile.h"

#include <gmock/gmock.h>
#include <regex>

namespace quorvel {
namespace {

AppProfile ordinaryProfile() {
    AppProfile profile;
    profile.bundleId = "com.example.Notes";
    profile.displayName = "Notes";
    profile.sandboxed = true;
    profile.strategy = Strategy::containerRedirect;
    profile.singleton = SingletonTier::lockFile;
    profile.prefsLeak = true;
    profile.extraArgs = {"--user-data-dir={{instanceHome}}/QuorvelData"};
    profile.verifiedOn = {"macOS 14.5"};
    profile.confidence = Confidence::verified;
    return profile;
}

Confidence reconciled(Confidence confidence, const std::string& signature) {
    AppProfile profile = ordinaryProfile();
    profile.confidence = confidence;
    AppProfile result = profile.reconciled(signature);
    const Confidence found = result.confidence;
    result.confidence = confidence;
    EXPECT_EQ(result, profile) << "nothing else may change";
    return found;
}

TEST(AppProfileTest, ReconciliationKeepsTrustOnASystemWhereItWasConfirmed) {
    EXPECT_EQ(reconciled(Confidence::verified, "macOS 14.5"), Confidence::verified);
    EXPECT_EQ(reconciled(Confidence::community, "macOS 14.5"), Confidence::community);
}

TEST(AppProfileTest, ReconciliationLowersTrustOnAnyOtherSystem) {
    EXPECT_EQ(reconciled(Confidence::verified, "macOS 15.0"), Confidence::autoDetected);
    EXPECT_EQ(reconciled(Confidence::community, "macOS 15.0"), Confidence::autoDetected);
    EXPECT_EQ(reconciled(Confidence::verified, "MACOS 14.5"), Confidence::autoDetected);
    EXPECT_EQ(reconciled(Confidence::verified, "macOS 14.50"), Confidence::autoDetected);
}

TEST(AppProfileTest, ReconciliationLeavesWhatWasNotTrustedAlone) {
    for (const char* signature : {"macOS 14.5", "macOS 15.0"}) {
        EXPECT_EQ(reconciled(Confidence::broken, signature), Confidence::broken);
        EXPECT_EQ(reconciled(Confidence::autoDetected, signature), Confidence::autoDetected);
    }
}

TEST(AppProfileTest, ProfileJsonHasItsKeysInAlphabeticalOrder) {
    EXPECT_EQ(ordinaryProfile().encodedJSON(), R"({
  "bundleId": "com.example.Notes",
  "confidence": "verified",
  "displayName": "Notes",
  "extraArgs": [
    "--user-data-dir={{instanceHome}}\/QuorvelData"
  ],
  "prefsLeak": true,
  "sandboxed": true,
  "singleton": "lockFile",
  "strategy": "container-redirect",
  "verifiedOn": [
    "macOS 14.5"
  ]
})");
}

TEST(AppProfileTest, ProfileJsonReadsWhatItWrote) {
    EXPECT_EQ(AppProfile::fromJson(ordinaryProfile().encodedJSON()), ordinaryProfile());
    AppProfile odd;
    odd.displayName = "“Ä/\"\\\n\x01 <b>";
    odd.verifiedOn = {"", ""};
    EXPECT_EQ(AppProfile::fromJson(odd.encodedJSON()), odd);
}

TEST(AppProfileTest, ProfileJsonCannotContainInvalidUtf8) {
    AppProfile profile = ordinaryProfile();
    profile.displayName = "\xff";
    EXPECT_THROW((void)profile.encodedJSON(), ProfileError);
}

// The JSON of an ordinary profile with one line of it changed.
std::string with(const std::string& key, const std::string& line) {
    const std::regex old("  \"" + key + R"(": (\[[^\]]*\]|[^,\n]*),?)");
    return std::regex_replace(ordinaryProfile().encodedJSON(), old, line);
}

std::string errorOf(const std::string& json) {
    try {
        (void)AppProfile::fromJson(json);
        return "no error";
    } catch (const ProfileError& error) {
        return error.description();
    }
}

TEST(AppProfileTest, ProfileJsonNeedsEveryKey) {
    for (const char* key : {"bundleId", "confidence", "displayName", "extraArgs", "prefsLeak",
                            "sandboxed", "singleton", "strategy"}) {
        EXPECT_EQ(errorOf(with(key, "")), "The key “" + std::string(key) + "” is missing.");
    }
    EXPECT_EQ(errorOf(with("verifiedOn", "\"x\": 1")), "The key “verifiedOn” is missing.");
}

TEST(AppProfileTest, ProfileJsonRefusesUnknownRawValues) {
    for (const char* key : {"confidence", "singleton", "strategy"}) {
        for (const char* value : {"\"other\"", "\"\"", "\"Verified\"", "1", "null", "[]"}) {
            const std::string line = "\"" + std::string(key) + "\": " + value + ",";
            EXPECT_THROW((void)AppProfile::fromJson(with(key, line)), ProfileError) << line;
        }
        EXPECT_EQ(errorOf(with(key, "\"" + std::string(key) + "\": \"other\",")),
                  "The value of “" + std::string(key) + "” is not known.");
    }
}

TEST(AppProfileTest, ProfileJsonRefusesValuesOfTheWrongType) {
    for (const char* line :
         {R"("bundleId": 1,)", R"("bundleId": null,)", R"("displayName": ["a"],)",
          R"("sandboxed": 1,)", R"("sandboxed": "true",)", R"("prefsLeak": null,)",
          R"("extraArgs": "a",)", R"("extraArgs": [1],)", R"("extraArgs": {"a": "b"},)"}) {
        const std::string key = std::string(line).substr(1, std::string(line).find('"', 1) - 1);
        EXPECT_EQ(errorOf(with(key, line)), "The value of “" + key + "” is of the wrong type.");
    }
}

TEST(AppProfileTest, ProfileJsonReportsEveryFaultTogether) {
    EXPECT_EQ(errorOf(R"({"bundleId":1,"strategy":"none","sandboxed":true,"confidence":"broken"})"),
              "The value of “bundleId” is of the wrong type. "
              "The value of “strategy” is not known. "
              "The key “displayName” is missing. The key “extraArgs” is missing. "
              "The key “prefsLeak” is missing. The key “singleton” is missing. "
              "The key “verifiedOn” is missing.");
}

TEST(AppProfileTest, ProfileJsonIgnoresAnyValueOfAnUnknownKey) {
    for (const std::string& value : {std::string("1e999"), std::string(R"("\ud800")"),
                                     std::string(5000, '[') + std::string(5000, ']')}) {
        EXPECT_EQ(AppProfile::fromJson(with(
                      "bundleId", R"("bundleId": "com.example.Notes", "new": )" + value + ",")),
                  ordinaryProfile());
    }
}

TEST(AppProfileTest, ProfileJsonPassesOverKeysItDoesNotKnow) {
    EXPECT_EQ(AppProfile::fromJson(
                  with("bundleId", R"("bundleId": "com.example.Notes", "new": {"a": [null]},)")),
              ordinaryProfile());
}

TEST(AppProfileTest, ProfileJsonRefusesAnythingButAnObject) {
    const std::string deep(200'000, '[');
    for (const std::string& text :
         {std::string(), std::string("null"), std::string("[]"), std::string("{"),
          std::string("\xff\xfe"), ordinaryProfile().encodedJSON().substr(0, 90),
          ordinaryProfile().encodedJSON() + "}", deep, deep + std::string(200'000, ']')}) {
        EXPECT_THROW((void)AppProfile::fromJson(text), ProfileError) << text.substr(0, 90);
    }
}

TEST(AppProfileTest, RawValuesAreTheNamesOfTheCases) {
    const std::vector<std::pair<SingletonTier, const char*>> tiers{
        {SingletonTier::none, "none"},
        {SingletonTier::lockFile, "lockFile"},
        {SingletonTier::machPort, "machPort"},
        {SingletonTier::lsProhibited, "lsProhibited"},
        {SingletonTier::unknown, "unknown"}};
    for (const auto& [tier, name] : tiers) {
        EXPECT_EQ(rawString(tier), name);
        EXPECT_EQ(caseNamed<SingletonTier>(name), tier) << name;
    }
    const std::vector<std::pair<Confidence, const char*>> confidences{
        {Confidence::verified, "verified"},
        {Confidence::community, "community"},
        {Confidence::autoDetected, "autoDetected"},
        {Confidence::broken, "broken"}};
    for (const auto& [confidence, name] : confidences) {
        EXPECT_EQ(rawString(confidence), name);
        EXPECT_EQ(caseNamed<Confidence>(name), confidence) << name;
    }
    EXPECT_EQ(caseNamed<SingletonTier>("None"), std::nullopt);
    EXPECT_EQ(caseNamed<Confidence>(""), std::nullopt);
}

TEST(AppProfileTest, SystemSignatureIsTheMajorAndTheMinorVersion) {
    EXPECT_EQ(operatingSystemSignature({14, 5}), "macOS 14.5");
    EXPECT_EQ(operatingSystemSignature({15, 0}), "macOS 15.0");
    EXPECT_EQ(operatingSystemSignature({6, 18, "Debian GNU/Linux 12"}), "Debian GNU/Linux 12");
}

} // namespace
} // namespace quorvel
