#include "CommandLine/LogCommand.h"

#include "Base/TerminalText.h"
#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/LogReader.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <chrono>
#include <ostream>
#include <thread>

namespace quorvel {
namespace {

// Returns how many bytes at the end are the beginning of a character.
std::size_t brokenEnd(std::string_view text) {
    constexpr std::size_t longest = 3;
    for (std::size_t count = 1; count <= std::min(longest, text.size()); ++count) {
        const auto byte = static_cast<unsigned char>(text[text.size() - count]);
        if (byte >= 0xC0) {
            const std::size_t length = byte >= 0xF0 ? 4 : byte >= 0xE0 ? 3 : 2;
            return length > count ? count : 0;
        }
        if (byte < 0x80) {
            return 0;
        }
    }
    return 0;
}

// Makes a log harmless for a terminal, piece by piece. Its line breaks and tabs stay.
class SafeLog {
public:
    [[nodiscard]] std::string operator()(const std::string& bytes) {
        std::string text = std::exchange(broken_, {}) + bytes;
        const std::size_t broken = brokenEnd(text);
        broken_ = text.substr(text.size() - broken);
        text.resize(text.size() - broken);
        std::string safe;
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = std::min(text.find_first_of("\n\t", start), text.size());
            safe += terminalText(std::string_view(text).substr(start, end - start), text.size());
            safe += text.substr(end, 1);
            start = end + 1;
        }
        return safe;
    }

private:
    std::string broken_{};
};

nlohmann::json jsonForm(LogReader& reader) {
    constexpr std::uintmax_t most = std::uintmax_t{1} << 20U;
    const std::uintmax_t size = reader.size();
    const std::uintmax_t skipped = size > most ? size - most : 0;
    reader.skipTo(skipped);
    std::string text;
    for (std::string part = reader.next(); !part.empty() && text.size() < most;
         part = reader.next()) {
        text += part;
    }
    return {{"path", reader.path().string()}, {"size", size}, {"skipped", skipped}, {"text", text}};
}

} // namespace

void logCommand(const CommandContext& context, const std::string& clone, bool follow, bool json) {
    if (follow && json) {
        throw UsageError("--follow and --json can’t be used together");
    }
    const InstanceRecord record = findClone(context.registry, clone);
    LogReader reader(record.config.resolvedHome());
    if (!follow && !reader.hasLog()) {
        throw CommandError("“" + record.config.displayName + "” has no log yet at " +
                           reader.path().string() + ".");
    }
    if (json) {
        context.output << document(jsonForm(reader));
        return;
    }
    SafeLog safe;
    constexpr std::chrono::milliseconds pause{100};
    while (context.output) {
        const std::string part = reader.next();
        if (!part.empty()) {
            context.output << (context.outputIsTerminal ? safe(part) : part);
        } else if (follow) {
            context.output << std::flush;
            std::this_thread::sleep_for(pause);
        } else {
            return;
        }
    }
}

} // namespace quorvel
