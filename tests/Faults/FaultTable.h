#pragma once

#include "tests/support/EveryStep.h"

#include <cstddef>
#include <functional>
#include <string>

namespace quorvel::testing {

/// A change that is interrupted at each of its system calls.
struct FaultCase {
    std::string name{};
    std::function<void()> prepare{}; ///< called before each try
    std::function<int()> change{};   ///< in a process of its own; returns its exit status
    /// Returns what is wrong afterwards; empty if the point holds. If the process was killed, the
    /// outcome has no status.
    std::function<std::string(const FaultOutcome& outcome, bool wasKilled)> judge{};
};

/// Tries changes with faults, and prints a row for each kind of fault.
class FaultTable {
public:
    /// With a stride, only every so many of the system calls meet with a fault.
    explicit FaultTable(int stride);

    /// Kills the process at each call, and lets each call fail with ENOSPC, EIO and EACCES.
    void add(const FaultCase& tried);

    /// Prints the last row. Returns whether something was tried in each row, and every point held.
    [[nodiscard]] bool finish() const;

private:
    void addRow(const FaultCase& tried, const char* name, const Fault& fault);

    int stride_;
    std::size_t tried_ = 0;
    std::size_t held_ = 0;
    bool hasEmptyRow_ = false;
};

} // namespace quorvel::testing
