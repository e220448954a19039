#include "CommandLine/CloneTexts.h"

#include "Base/TerminalText.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Targets/AppEngine.h"
#include "Presentation/AppTexts.h"
#include "Presentation/JoinedText.h"
#include "Presentation/SystemWords.h"

#include <nlohmann/json.hpp>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace quorvel {
namespace {

// A longer name in a table would push the other columns off the screen.
constexpr std::size_t longestName = 60;

std::string nameColumn(const InstanceRecord& record) {
    return terminalText(record.config.displayName, longestName);
}

// The width of a text on a terminal, in columns: East Asian characters take two, marks and
// invisible characters none.
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

std::string factLines(const std::vector<Fact>& facts) {
    std::size_t width = 0;
    for (const Fact& fact : facts) {
        width = std::max(width, columns(fact.label));
    }
    std::string text;
    for (const Fact& fact : facts) {
        for (const std::string& line : fact.lines) {
            text += padded(fact.label, width + 2) + terminalText(line) + "\n";
        }
    }
    return text;
}

std::string yesOrNo(bool value) {
    return value ? "yes" : "no";
}

} // namespace

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
    const AppEngine engine = detectEngine(bundle);
    return {
        {"url", bundle.url.string()},
        {"format", rawString(bundle.format)},
        {"arguments", bundle.arguments},
        {"bundleId", bundle.bundleId},
        {"executableName", bundle.executableName},
        {"executableURL", bundle.executableURL().string()},
        {"sandboxed", bundle.sandboxed},
        {"prohibitsMultipleInstances", bundle.prohibitsMultipleInstances},
        {"engine", rawString(engine)},
        {"defaultArguments", dataDirArgs(engine)},
    };
}

std::string document(const nlohmann::json& value) {
    constexpr int indent = 2;
    return escapingUnsafe(
               value.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace)) +
           "\n";
}

std::string shownPath(const CommandContext& context, const std::filesystem::path& path) {
    return context.outputIsTerminal ? terminalText(path.string()) : path.string();
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
        text += terminalText(fullSource(config)) + "\n";
    }
    return text;
}

std::string description(const InstanceRecord& record, const CloneState& state) {
    return factLines(cloneReport(record, state, inSystemWords));
}

std::string description(const AppBundle& bundle) {
    const AppEngine engine = detectEngine(bundle);
    std::vector<Fact> facts{
        {"Bundle id", {bundle.bundleId}},
        {"Executable", {bundle.executableURL().string()}},
        {"Sandboxed", {yesOrNo(bundle.sandboxed)}},
        {"One copy only", {yesOrNo(bundle.prohibitsMultipleInstances)}},
        {"Engine", {std::string(rawString(engine))}},
    };
    const auto addArguments = [&](const char* label, const std::vector<std::string>& arguments) {
        if (!arguments.empty()) {
            facts.push_back({label, {joined(arguments, " ")}});
        }
    };
    addArguments("Own arguments", bundle.arguments);
    addArguments("Default arguments", dataDirArgs(engine));
    if (auto reason = snapReason(bundle, inSystemWords)) {
        facts.push_back({"Note", {std::move(*reason)}});
    }
    return factLines(facts);
}

} // namespace quorvel
