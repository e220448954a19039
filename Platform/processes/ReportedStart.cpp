#include "Platform/processes/ReportedStart.h"

#include "Platform/processes/StartReport.h"

#include <fcntl.h>
#include <unistd.h>

namespace quorvel {

ReportedStart startReporting(Process::Options options) {
    int ends[2];
    if (::pipe(ends) != 0) {
        throw PlatformError::fromErrno(options.executable, "started");
    }
    FileHandle reading(ends[0]);
    const FileHandle writing(ends[1]);
    ::fcntl(ends[0], F_SETFD, FD_CLOEXEC);
    ::fcntl(ends[1], F_SETFD, FD_CLOEXEC);
    options.standardOutput = Process::Discard{};
    options.standardError = Process::Discard{};
    options.detached = true;
    options.kept = writing.descriptor();
    if (!options.environment) {
        options.environment = currentEnvironment();
    }
    (*options.environment)[StartReport::variable] = std::to_string(Process::keptDescriptor);
    return {Process::run(options), std::move(reading)};
}

} // namespace quorvel
