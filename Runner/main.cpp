#include "Platform/processes/MainExecutable.h"
#include "Runner/Runner.h"

#include <cstdio>

int main(int argc, char** argv) {
    const std::filesystem::path executable = quorvel::mainExecutable();
    const std::vector<std::string> arguments{argv + (argc > 0 ? 1 : 0), argv + argc};
    // In a wrapper it has another name, and its arguments are the target's.
    if (executable.filename().native() == "quorvel-runner" &&
        arguments == std::vector<std::string>{"--version"}) {
        return std::puts("quorvel-runner " QUORVEL_VERSION) < 0 ? 1 : 0;
    }
    return quorvel::runClone(executable, arguments);
}
