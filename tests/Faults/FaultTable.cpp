#include "tests/Faults/FaultTable.h"

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <stdexcept>

namespace quorvel::testing {

FaultTable::FaultTable(int stride) : stride_(stride) {
    std::cout << "| command | at each call | points tried | points held |\n|---|---|--:|--:|\n";
}

void FaultTable::add(const FaultCase& tried) {
    addRow(tried, "killed", {});
    addRow(tried, "ENOSPC", {ENOSPC});
    addRow(tried, "EIO", {EIO});
    addRow(tried, "EACCES", {EACCES});
}

void FaultTable::addRow(const FaultCase& tried, const char* name, const Fault& fault) {
    std::size_t points = 0;
    std::size_t held = 0;
    for (int step = 0;; step += stride_) {
        tried.prepare();
        const FaultOutcome outcome = withFault(step, fault, [&] { std::_Exit(tried.change()); });
        if (outcome.kill == Kill::notPermitted) {
            throw std::runtime_error("the kernel forbids tracing");
        }
        if (outcome.kill == Kill::ended) {
            break;
        }
        const std::string problem = tried.judge(outcome, fault.error == 0);
        ++points;
        held += problem.empty() ? 1 : 0;
        if (!problem.empty()) {
            std::cerr << tried.name << ", " << name << " at call " << step << ": " << problem
                      << "\n";
        }
    }
    std::cout << "| " << tried.name << " | " << name << " | " << points << " | " << held << " |\n"
              << std::flush;
    if (points == 0) {
        std::cerr << tried.name << ", " << name << ": nothing was tried\n";
        hasEmptyRow_ = true;
    }
    tried_ += points;
    held_ += held;
}

bool FaultTable::finish() const {
    std::cout << "| all | | " << tried_ << " | " << held_ << " |\n";
    return tried_ > 0 && tried_ == held_ && !hasEmptyRow_;
}

} // namespace quorvel::testing
