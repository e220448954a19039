#pragma once

#include "Platform/processes/Process.h"
#include "tests/support/SessionBus.h"

#include <filesystem>
#include <string>

namespace quorvel::testing {

/// A program that replaces one of the desktop's on the session bus while the object lives. It
/// writes down what it is asked for.
class BusProgram {
public:
    /// Runs `program` with the path of its log, in which it writes "ready" as the first line.
    /// Throws `std::runtime_error` if it does not come up.
    BusProgram(const std::string& program, std::filesystem::path log);
    BusProgram(const BusProgram&) = delete;
    BusProgram& operator=(const BusProgram&) = delete;
    ~BusProgram();

    /// Returns what it was asked for, one line each.
    [[nodiscard]] std::string asked() const;

private:
    std::filesystem::path log_;
    Process process_;
};

} // namespace quorvel::testing
