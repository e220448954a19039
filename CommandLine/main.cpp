#include "CommandLine/CommandLine.h"
#include "Platform/processes/StandardStreams.h"

#include <cstdlib>
#include <iostream>
#include <string>

int main(int argc, char** argv) {
    // A desktop or a tray sets this token for the programs that it starts.
    const std::unique_ptr<quorvel::Workspace> workspace = quorvel::makeSystemWorkspace([] {
        const char* const token =
            std::getenv("XDG_ACTIVATION_TOKEN"); // NOLINT(concurrency-mt-unsafe)
        return std::string(token == nullptr ? "" : token);
    });
    const quorvel::CommandContext context{std::cin,
                                          std::cout,
                                          std::cerr,
                                          quorvel::inputIsTerminal(),
                                          quorvel::outputIsTerminal(),
                                          *workspace,
                                          quorvel::InstanceRegistry()};
    const int status = quorvel::runCommandLine({argv + (argc > 0 ? 1 : 0), argv + argc}, context);
    // A full disk or a closed pipe shows only when the last bytes are written.
    if (!std::cout.flush()) {
        std::cerr << "The output couldn’t be written.\n";
        return 1;
    }
    return status;
}
