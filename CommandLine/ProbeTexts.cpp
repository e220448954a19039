#include "CommandLine/ProbeTexts.h"

#include "Base/TerminalText.h"
#include "Base/Utf8.h"
#include "Presentation/AppTexts.h"
#include "Presentation/JoinedText.h"
#include "Presentation/StrategyTexts.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace quorvel {
namespace {

constexpr std::size_t examples = 3;

std::string inWords(SingletonTier tier) {
    switch (tier) {
    case SingletonTier::none:
        return "runs side by side with the first";
    case SingletonTier::lockFile:
        return "keeps running but never appears: it is waiting for a lock";
    case SingletonTier::machPort:
        return "hands over to the first and quits";
    case SingletonTier::lsProhibited:
        return "is forbidden by the app itself";
    case SingletonTier::unknown:
        break;
    }
    return "is unclear: no copy was running at the end of the trial";
}

std::string inWords(LeakBucket bucket, const Translate& translate) {
    switch (bucket) {
    case LeakBucket::captured:
        return "inside the trial's home folder";
    case LeakBucket::dataLeak:
        return translate("ProbeTexts", "into your Application Support");
    case LeakBucket::prefsLeak:
        return translate("ProbeTexts", "into your Preferences");
    case LeakBucket::containerLeak:
        return "into its sandbox container";
    case LeakBucket::irrelevant:
        break;
    }
    return "elsewhere (by other programs, or irrelevant)";
}

bool isLeak(LeakBucket bucket) {
    return bucket == LeakBucket::dataLeak || bucket == LeakBucket::prefsLeak ||
           bucket == LeakBucket::containerLeak;
}

// A file written several times is recorded several times; one example is enough.
std::vector<std::string> firstOf(const std::vector<std::string>& paths) {
    std::vector<std::string> chosen;
    for (const std::string& path : paths) {
        if (chosen.size() < examples &&
            std::find(chosen.begin(), chosen.end(), path) == chosen.end()) {
            chosen.push_back(path);
        }
    }
    return chosen;
}

std::string line(const std::string& name, const std::string& value) {
    constexpr std::size_t width = 18;
    return name + std::string(width - std::min(width, name.size()), ' ') + value + "\n";
}

// A folder's name may not be UTF-8, which JSON can't represent.
std::string printable(const std::string& text) {
    return isUtf8(text) ? text : utf8FromLatin1(text);
}

AppProfile printable(AppProfile profile) {
    profile.bundleId = printable(profile.bundleId);
    profile.displayName = printable(profile.displayName);
    return profile;
}

std::string writes(const ProbeResult& result, const Translate& translate) {
    std::string text = "Writes\n";
    for (const LeakBucket bucket : allCases<LeakBucket>()) {
        const std::size_t count = result.count(bucket);
        std::string number = std::to_string(count);
        number.insert(0, 7 - std::min<std::size_t>(7, number.size()), ' ');
        text += number + " " + inWords(bucket, translate) + "\n";
        if (count > 0 && isLeak(bucket)) {
            for (const std::string& path : firstOf(result.buckets.at(bucket))) {
                text += "          " + terminalText(path) + "\n";
            }
        }
    }
    return text;
}

} // namespace

nlohmann::json jsonForm(const InstalledApp& app) {
    nlohmann::json object{
        {"url", app.url.string()}, {"name", app.name}, {"bundleId", app.bundleId}};
    if (const auto icon = app.iconURL()) {
        object["iconURL"] = icon->string();
    }
    return object;
}

nlohmann::json jsonForm(const RunningApplication& application) {
    return {{"bundleId", application.bundleId},
            {"bundleURL", application.bundleURL.string()},
            {"pid", application.pid}};
}

nlohmann::json jsonForm(const AppProfile& profile, const ProbeResult& result) {
    nlohmann::json buckets = nlohmann::json::object();
    for (const auto& [bucket, paths] : result.buckets) {
        buckets[std::string(rawString(bucket))] = paths;
    }
    return {{"profile", nlohmann::json::parse(printable(profile).encodedJSON())},
            {"buckets", std::move(buckets)},
            {"complete", result.complete},
            {"inUse", result.isInUse}};
}

std::string listing(const std::vector<InstalledApp>& apps) {
    std::string text;
    for (const InstalledApp& app : apps) {
        text += terminalText(app.name) + "  " + terminalText(app.bundleId) + "  " +
                terminalText(app.url.string()) + "\n";
    }
    return text;
}

std::string listing(const std::vector<RunningApplication>& applications) {
    std::string text;
    for (const RunningApplication& application : applications) {
        text += std::to_string(application.pid) + "  " + terminalText(application.bundleId) + "  " +
                terminalText(application.bundleURL.string()) + "\n";
    }
    return text;
}

std::string description(const AppProfile& profile, const ProbeResult& result,
                        const Translate& translate) {
    std::string text;
    text += line("App", terminalText(profile.displayName + " (" + profile.bundleId + ")"));
    text += line("Recommendation", std::string(rawString(profile.strategy)) + ": " +
                                       strategyReason(profile.strategy, translate));
    text += line("A second copy", inWords(profile.singleton));
    text += line("Sandboxed", profile.sandboxed ? "yes" : "no");
    for (const std::string& argument : profile.extraArgs) {
        text += line("Argument", terminalText(argument));
    }
    const auto environment = profile.environment.value_or(std::map<std::string, std::string>{});
    for (const auto& [key, value] : environment) {
        text += line("Variable", terminalText(keyValueLine(key, value)));
    }
    if (const auto cost = environmentCost(environment, translate)) {
        text += *cost + "\n";
    }
    text += writes(result, translate);
    if (result.isInUse) {
        text += "You have the app open. What it wrote meanwhile is counted, too.\n";
    }
    text += result.complete
                ? "The record is complete.\n"
                : "The record may be incomplete: the system could not report every write.\n";
    return text;
}

} // namespace quorvel
