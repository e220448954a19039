#pragma once

#include "CommandLine/CommandLine.h"
#include "tests/support/StubWorkspace.h"
#include "tests/support/TemporaryHome.h"

#include <nlohmann/json_fwd.hpp>

#include <sstream>
#include <string>
#include <vector>

namespace quorvel::testing {

/// The result of one command line.
struct CommandResult {
    int status = 0;
    std::string output{};
    std::string errors{};

    /// The output, parsed. Throws what the parser throws.
    [[nodiscard]] nlohmann::json json() const;
};

/// Runs command lines in a throw-away home, with a stub for the desktop.
class CommandLineHarness {
public:
    CommandResult run(const std::vector<std::string>& arguments) {
        std::istringstream input(typed);
        std::ostringstream output;
        std::ostringstream errors;
        const CommandContext context{input,
                                     output,
                                     errors,
                                     inputIsTerminal,
                                     outputIsTerminal,
                                     workspace,
                                     InstanceRegistry()};
        const int status = runCommandLine(arguments, context);
        return {status, output.str(), errors.str()};
    }

    TemporaryHome home{};
    StubWorkspace workspace{};
    std::string typed{};
    bool inputIsTerminal = false;
    bool outputIsTerminal = false;
};

} // namespace quorvel::testing
