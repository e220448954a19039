#include "Platform/processes/MainExecutable.h"
#include "Runner/Runner.h"

#include <cstdio>

int main(int argc, char** argv) {
    const std::filesystem::path executable = quorvel::mainExecutable();
    const std::vector<std::string> arguments{argv + (argc > 0 ? 1 : 0), argv + argc};
    // Only outside a wrapper, where its name is another: a clone's arguments are its target's.
    if (executable.filename().native() == "quorvel-runner" &&
        arguments == std::vector<std::string>{"--version"}) {
        return std::puts("quorvel-runner " QUORVEL_VERSION) < 0 ? 1 : 0;
    }
    return quorvel::runClone(executable, arguments);
}
