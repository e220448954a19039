#include "CommandLine/LogCommand.h"

#include "CommandLine/CloneLookup.h"
#include "CommandLine/CloneTexts.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Launching/LogReader.h"
#include "Presentation/SafeLog.h"

#include <nlohmann/json.hpp>

#include <chrono>
#include <ostream>
#include <thread>

namespace quorvel {
namespace {

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
