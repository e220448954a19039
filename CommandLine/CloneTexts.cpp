#include "CommandLine/CloneTexts.h"

#include "Base/TerminalText.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/WrapperFactory.h"

#include <nlohmann/json.hpp>

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

using Fact = std::pair<std::string, std::string>;

// A clone's name in a table: no longer one pushes the other columns off the screen.
constexpr std::size_t longestName = 60;

std::string nameColumn(const InstanceRecord& record) {
    return terminalText(record.config.displayName, longestName);
}

// The columns that a text takes on a terminal: East Asian characters are two wide, marks and what
// can't be seen none.
std::size_t columns(const std::string& text) {
    std::size_t width = 0;
    const auto length = static_cast<int32_t>(text.size());
    for (int32_t index = 0; index < length;) {
        UChar32 scalar = 0;
        U8_NEXT(text.data(), index, length, scalar);
        const int32_t kind = u_getIntPropertyValue(scalar, UCHAR_EAST_ASIAN_WIDTH);
        const bool mark =
            (U_GET_GC_MASK(scalar) & (U_GC_MN_MASK | U_GC_ME_MASK | U_GC_CF_MASK)) != 0;
        width += mark ? 0 : kind == U_EA_WIDE || kind == U_EA_FULLWIDTH ? 2 : 1;
    }
    return width;
}

std::string padded(const std::string& text, std::size_t width) {
    const std::size_t own = columns(text);
    return text + std::string(width > own ? width - own : 0, ' ');
}

std::string facts(const std::vector<Fact>& rows) {
    std::size_t width = 0;
    for (const auto& [name, value] : rows) {
        width = std::max(width, columns(name));
    }
    std::string text;
    for (const auto& [name, value] : rows) {
        text += padded(name, width + 2) + terminalText(value) + "\n";
    }
    return text;
}

std::string yesOrNo(bool value) {
    return value ? "yes" : "no";
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) {
        text += (text.empty() ? "" : " ") + word;
    }
    return text;
}

void addIfSet(std::vector<Fact>& rows, const char* name, const std::string& value) {
    if (!value.empty()) {
        rows.emplace_back(name, value);
    }
}

// What the clone opens, in one line.
std::string opens(const InstanceConfig& config) {
    switch (config.kind) {
    case ShortcutKind::web:
        return config.url.value_or("");
    case ShortcutKind::file:
        return config.openPath.value_or("");
    case ShortcutKind::command:
        return joined({config.commandPath.value_or("")}) +
               (config.commandArgs.empty() ? "" : " " + joined(config.commandArgs));
    case ShortcutKind::app:
        break;
    }
    return config.targetAppPath;
}

} // namespace

std::string sizeText(std::uintmax_t bytes) {
    if (bytes < 1000) {
        return std::to_string(bytes) + (bytes == 1 ? " byte" : " bytes");
    }
    // In tenths, rounded down, so that no size looks larger than it is.
    std::uintmax_t tenths = bytes / 100;
    const std::array<const char*, 4> units{" kB", " MB", " GB", " TB"};
    std::size_t unit = 0;
    for (; tenths >= 10'000 && unit + 1 < units.size(); ++unit) {
        tenths /= 1000;
    }
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + units[unit];
}

nlohmann::json jsonForm(const InstanceRecord& record, const RunningApplications& running) {
    nlohmann::json object{
        {"bundleURL", record.bundleURL.string()},
        {"running", running.contains(record.config.bundleId)},
        {"config", nlohmann::json::parse(record.config.json())},
    };
    if (const auto icon = record.iconURL()) {
        object["iconURL"] = icon->string();
    }
    return object;
}

nlohmann::json jsonForm(const AppBundle& bundle) {
    return {
        {"url", bundle.url.string()},
        {"bundleId", bundle.bundleId},
        {"executableName", bundle.executableName},
        {"executableURL", bundle.executableURL().string()},
        {"sandboxed", bundle.sandboxed},
        {"prohibitsMultipleInstances", bundle.prohibitsMultipleInstances},
        {"engine", rawString(WrapperFactory::detectEngine(bundle.url, bundle.bundleId))},
        {"defaultArguments", WrapperFactory::autoDataDirArgs(bundle.url, bundle.bundleId)},
    };
}

std::string document(const nlohmann::json& value) {
    constexpr int indent = 2;
    return escapingHarmful(
               value.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace)) +
           "\n";
}

std::string listing(const std::vector<InstanceRecord>& records,
                    const RunningApplications& running) {
    std::size_t width = 0;
    for (const InstanceRecord& record : records) {
        width = std::max(width, columns(nameColumn(record)));
    }
    std::string text;
    for (const InstanceRecord& record : records) {
        const InstanceConfig& config = record.config;
        text += running.contains(config.bundleId) ? "● " : "  ";
        text += padded(nameColumn(record), width + 2);
        text += padded(std::string(rawString(config.kind)), 9);
        text += terminalText(opens(config)) + "\n";
    }
    return text;
}

std::string description(const InstanceRecord& record, bool running,
                        std::optional<std::uintmax_t> logSize) {
    const InstanceConfig& config = record.config;
    std::vector<Fact> rows{
        {"Name", config.displayName},
        {"Running", yesOrNo(running)},
        {"Kind", std::string(rawString(config.kind))},
        {"Opens", opens(config)},
    };
    if (config.kind == ShortcutKind::app) {
        rows.emplace_back("Strategy", rawString(config.strategy));
    }
    for (const CloneSwitch& each : shownSwitches(config.kind, config)) {
        rows.emplace_back(each.fact, yesOrNo(each.valueIn(config)));
    }
    addIfSet(rows, "Arguments", joined(config.extraArgs));
    for (const auto& [key, value] : config.environment) {
        rows.emplace_back("Environment", key + "=" + value);
    }
    addIfSet(rows, "Working directory", config.workingDirectory.value_or(""));
    if (config.iconLabel) {
        rows.emplace_back("Icon label", config.iconLabel->text);
    }
    rows.emplace_back("Data folder", config.resolvedHome());
    if (logSize) {
        rows.emplace_back("Log", sizeText(*logSize));
    }
    rows.emplace_back("Bundle id", config.bundleId);
    rows.emplace_back("Location", record.bundleURL.string());
    return facts(rows);
}

std::string description(const AppBundle& bundle) {
    const auto arguments = WrapperFactory::autoDataDirArgs(bundle.url, bundle.bundleId);
    std::vector<Fact> rows{
        {"Bundle id", bundle.bundleId},
        {"Executable", bundle.executableURL().string()},
        {"Sandboxed", yesOrNo(bundle.sandboxed)},
        {"One copy only", yesOrNo(bundle.prohibitsMultipleInstances)},
        {"Engine",
         std::string(rawString(WrapperFactory::detectEngine(bundle.url, bundle.bundleId)))},
    };
    addIfSet(rows, "Default arguments", joined(arguments));
    return facts(rows);
}

} // namespace quorvel
