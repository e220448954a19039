#pragma once

#include "Platform/processes/Process.h"
#include "tests/support/TemporaryHome.h"

#include <string>
#include <vector>

namespace quorvel::testing {

/// What a program printed, on either stream, and its exit status.
struct Outcome {
    std::string output{};
    int status = 0;
};

/// Runs a program to its end. `output` may be up to a megabyte long.
inline Outcome outcomeOf(std::vector<std::string> command,
                         std::optional<Environment> environment = std::nullopt) {
    // By way of a shell, so that the status and both streams come back at once.
    Process::Options options;
    options.executable = "/bin/sh";
    options.arguments = {"-c", R"("$0" "$@" 2>&1; echo "$?")"};
    options.arguments.insert(options.arguments.end(), command.begin(), command.end());
    options.environment = std::move(environment);
    std::string output = Process::capture(options, std::size_t{1} << 20U);
    output.pop_back(); // the line's end
    const std::size_t last = output.rfind('\n') + 1;
    const int status = std::stoi(output.substr(last));
    return {output.substr(0, last), status};
}

} // namespace quorvel::testing
