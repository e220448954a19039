#include "Platform/processes/ReportedStart.h"

#include "Platform/processes/Pipe.h"

namespace quorvel {

ReportedStart startReporting(Process::Options options) {
    Pipe pipe = openPipe(options.executable, "started");
    options.standardOutput = Process::Discard{};
    options.standardError = Process::Discard{};
    options.detached = true;
    options.kept = pipe.writing.descriptor();
    if (!options.environment) {
        options.environment = currentEnvironment();
    }
    (*options.environment)[StartReport::variable] = std::to_string(Process::keptDescriptor);
    return {Process::run(options), std::move(pipe.reading)};
}

StartOutcome outcomeOf(const ReportedStart& start, int wake) {
    constexpr std::chrono::seconds silence{1}; // of a runner too old to report
    constexpr std::chrono::seconds longest{30};
    return readStartReport(start.reports.descriptor(), wake, silence, longest);
}

} // namespace quorvel
