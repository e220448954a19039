#include "QuorvelApp/model/DisplayTexts.h"

#include "LaunchKit/InstanceConfig.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace quorvel {
namespace {

struct KindTexts {
    std::string_view kind;
    std::string_view sourceLabel;
};

KindTexts textsFor(ShortcutKind kind) {
    switch (kind) {
    case ShortcutKind::web:
        return {"Web App", "URL"};
    case ShortcutKind::file:
        return {"File", "Opens"};
    case ShortcutKind::command:
        return {"Command", "Command"};
    case ShortcutKind::app:
        break;
    }
    return {"App", "Source app"};
}

std::string joined(const std::vector<std::string>& parts) {
    std::string result;
    for (std::size_t index = 0; index < parts.size(); ++index) {
        result += (index == 0 ? "" : " ") + parts[index];
    }
    return result;
}

std::string environmentLines(const std::map<std::string, std::string>& environment) {
    std::string lines;
    // The map's own order is that of the bytes, which in UTF-8 is that of the code points.
    for (const auto& [key, value] : environment) {
        lines.append(lines.empty() ? "" : "\n").append(key).append("=").append(value);
    }
    return lines;
}

// A bundle's path may end with a slash, which is no name.
std::string lastNameWithoutExtension(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return std::filesystem::path(path).stem().string();
}

} // namespace

std::string sourceSummary(const InstanceConfig& config) {
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
        return joined(words);
    }
    case ShortcutKind::app:
        break;
    }
    return lastNameWithoutExtension(config.targetAppPath);
}

std::string strategyLabel(std::string_view rawValue) {
    switch (caseNamed<Strategy>(rawValue).value_or(Strategy{-1})) {
    case Strategy::homeOverride:
        return "Home override (A)";
    case Strategy::containerRedirect:
        return "Container redirect (B)";
    case Strategy::wrapperIdentity:
        return "Wrapper identity (C)";
    case Strategy::unsupported:
        return "Unsupported";
    }
    return std::string(rawValue);
}

std::string hexRGB(const QColor& color) {
    const QColor rgb = color.isValid() ? color.toRgb() : QColor(Qt::white);
    const auto byte = [](float part) { return static_cast<unsigned>(std::lround(part * 255.0F)); };
    std::array<char, 8> text{};
    (void)std::snprintf(text.data(), text.size(), "#%02X%02X%02X", byte(rgb.redF()) & 0xFFU,
                        byte(rgb.greenF()) & 0xFFU, byte(rgb.blueF()) & 0xFFU);
    return text.data();
}

std::vector<DetailRow> detailRows(const InstanceConfig& config,
                                  const std::filesystem::path& bundleURL) {
    const KindTexts texts = textsFor(config.kind);
    std::vector<DetailRow> rows{
        {.label = "Kind", .value = std::string(texts.kind)},
        {.label = std::string(texts.sourceLabel), .value = sourceSummary(config)}};
    if (config.kind == ShortcutKind::app) {
        rows.push_back({.label = "Strategy", .value = strategyLabel(rawString(config.strategy))});
    }
    if (!config.extraArgs.empty()) {
        rows.push_back({.label = "Arguments", .value = joined(config.extraArgs), .mono = true});
    }
    if (!config.environment.empty()) {
        rows.push_back(
            {.label = "Environment", .value = environmentLines(config.environment), .mono = true});
    }
    for (const CloneSwitch& each : shownSwitches(config.kind, config)) {
        if (each.inDetails) {
            rows.push_back(
                {.label = std::string(each.fact), .value = each.valueIn(config) ? "Yes" : "No"});
        }
    }
    rows.push_back({.label = "Data home", .value = config.instanceHome, .mono = true});
    rows.push_back({.label = "Bundle id", .value = config.bundleId, .mono = true});
    rows.push_back({.label = "Location", .value = bundleURL.string(), .mono = true});
    return rows;
}

} // namespace quorvel
