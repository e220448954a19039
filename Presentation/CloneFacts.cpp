#include "Presentation/CloneFacts.h"

#include "Base/BundleName.h"
#include "LaunchKit/InstanceRecord.h"
#include "Presentation/AppTexts.h"
#include "Presentation/JoinedText.h"
#include "Presentation/SizeText.h"
#include "Presentation/StrategyTexts.h"

#include <utility>

namespace quorvel {
namespace {

std::string kindLabel(ShortcutKind kind, const Translate& translate) {
    switch (kind) {
    case ShortcutKind::web:
        return translate("CloneFacts", "Web App");
    case ShortcutKind::file:
        return translate("CloneFacts", "File");
    case ShortcutKind::command:
        return translate("CloneFacts", "Command");
    case ShortcutKind::app:
        break;
    }
    return translate("CloneFacts", "App");
}

std::string sourceLabel(ShortcutKind kind, const Translate& translate) {
    switch (kind) {
    case ShortcutKind::web:
        return translate("CloneFacts", "URL");
    case ShortcutKind::file:
        return translate("CloneFacts", "Opens");
    case ShortcutKind::command:
        return translate("CloneFacts", "Command");
    case ShortcutKind::app:
        break;
    }
    return translate("CloneFacts", "Source app");
}

std::string yesOrNo(bool value, const Translate& translate) {
    return value ? translate("CloneFacts", "yes") : translate("CloneFacts", "no");
}

// In the map's order: by bytes, which in UTF-8 is by code points.
std::vector<std::string> environmentLines(const std::map<std::string, std::string>& environment) {
    std::vector<std::string> lines;
    lines.reserve(environment.size());
    for (const auto& [key, value] : environment) {
        lines.push_back(keyValueLine(key, value));
    }
    return lines;
}

// The rows of one clone, in the order in which they are added.
class FactList {
public:
    explicit FactList(bool full) : full_(full) {}

    void add(std::string label, std::string value) {
        facts_.push_back({.label = std::move(label), .lines = {std::move(value)}});
    }

    void addMonospaced(std::string label, std::vector<std::string> lines) {
        if (!lines.empty()) {
            facts_.push_back(
                {.label = std::move(label), .lines = std::move(lines), .monospaced = true});
        }
    }

    // Adds a row that only the full report has.
    void addInFull(std::string label, std::optional<std::string> value) {
        if (full_ && value) {
            add(std::move(label), std::move(*value));
        }
    }

    void addIf(bool condition, std::string label, std::string value) {
        if (condition) {
            add(std::move(label), std::move(value));
        }
    }

    [[nodiscard]] std::vector<Fact> take() { return std::move(facts_); }

private:
    bool full_;
    std::vector<Fact> facts_{};
};

std::optional<std::string> textIf(bool condition, std::string text) {
    return condition ? std::optional(std::move(text)) : std::nullopt;
}

// What opens the links that are clicked in an app's clone; std::nullopt if nothing was chosen.
std::optional<std::string> linksText(const InstanceConfig& config, bool full,
                                     const Translate& translate) {
    const std::string links = config.links.value_or("");
    if (config.kind != ShortcutKind::app || links.empty() || links == linksDefault) {
        return std::nullopt;
    }
    if (links == linksInside) {
        return translate("CloneFacts", "this clone");
    }
    return full || links.find('/') == std::string::npos ? links : bundleFallbackName(links);
}

// The single list of facts about a clone. Without a state, only the rows of the details.
std::vector<Fact> facts(const InstanceRecord& clone, const CloneState* state,
                        WindowGrouping grouping, const Translate& translate) {
    const InstanceConfig& config = clone.config;
    const bool full = state != nullptr;
    const bool isApp = config.kind == ShortcutKind::app;
    FactList list(full);
    list.addInFull(translate("CloneFacts", "Name"), config.displayName);
    list.addInFull(translate("CloneFacts", "Running"), yesOrNo(full && state->running, translate));
    list.add(translate("CloneFacts", "Kind"), kindLabel(config.kind, translate));
    list.add(sourceLabel(config.kind, translate),
             full ? fullSource(config) : sourceSummary(config));
    if (isApp) {
        list.add(translate("CloneFacts", "Strategy"),
                 strategyLabel(rawString(config.strategy), translate));
    }
    for (const CloneSwitch& each : shownSwitches(config.kind, config)) {
        list.addIf(full || each.inDetails, translate(switchContext, each.fact),
                   yesOrNo(each.valueIn(config), translate));
    }
    if (const auto links = linksText(config, full, translate)) {
        list.add(translate("CloneFacts", "Links open in"), *links);
    }
    if (!config.extraArgs.empty()) {
        list.addMonospaced(translate("CloneFacts", "Arguments"), {joined(config.extraArgs, " ")});
    }
    list.addMonospaced(translate("CloneFacts", "Environment"),
                       environmentLines(config.environment));
    if (auto cost = environmentCost(config.environment, translate)) {
        list.add(translate("CloneFacts", "Note"), std::move(*cost));
    }
    if (auto note = groupingNote(grouping, translate)) {
        list.add(translate("CloneFacts", "Windows"), std::move(*note));
    }
    list.addInFull(translate("CloneFacts", "Working directory"), config.workingDirectory);
    list.addInFull(
        translate("CloneFacts", "Icon label"),
        textIf(config.iconLabel.has_value(), config.iconLabel.value_or(IconLabel()).text));
    list.addMonospaced(translate("CloneFacts", "Data home"),
                       {full ? config.resolvedHome() : config.instanceHome});
    if (full && state->logSize) {
        list.add(translate("CloneFacts", "Log"), sizeText(*state->logSize));
    }
    list.addMonospaced(translate("CloneFacts", "Bundle id"), {config.bundleId});
    list.addMonospaced(translate("CloneFacts", "Location"), {clone.bundleURL.string()});
    return list.take();
}

} // namespace

std::string sourceSummary(const InstanceConfig& config) {
    if (config.kind == ShortcutKind::app) {
        return bundleFallbackName(config.targetAppPath);
    }
    return fullSource(config);
}

std::string fullSource(const InstanceConfig& config) {
    switch (config.kind) {
    case ShortcutKind::web:
        return config.url.value_or("");
    case ShortcutKind::file:
        return config.openPath.value_or("");
    case ShortcutKind::command: {
        std::vector<std::string> words = config.commandArgs;
        if (config.commandPath) {
            words.insert(words.begin(), *config.commandPath);
        }
        return joined(words, " ");
    }
    case ShortcutKind::app:
        break;
    }
    return config.targetAppPath;
}

std::string Fact::value() const {
    return joined(lines, "\n");
}

std::vector<Fact> cloneDetails(const InstanceRecord& clone, const Translate& translate,
                               WindowGrouping grouping) {
    return facts(clone, nullptr, grouping, translate);
}

std::vector<Fact> cloneReport(const InstanceRecord& clone, const CloneState& state,
                              const Translate& translate) {
    return facts(clone, &state, state.grouping, translate);
}

} // namespace quorvel
