// Interrupts each command that changes clones at every system call that changes the disk, lets each
// of these calls fail once, and prints what became of the clones: fault_trial [STRIDE [OPERATION]].
// With a stride, only every so many of the calls. Exits with 1 if a point did not hold or none was
// tried.
#include "tests/Faults/CloneFaults.h"
#include "tests/Faults/MenuFaults.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

int main(int argc, char** argv) {
    using namespace quorvel::testing;
    try {
        const int stride = argc > 1 ? std::max(1, std::atoi(argv[1])) : 1;
        const std::string only = argc > 2 ? argv[2] : "";
        FaultHome home;
        std::vector<FaultCase> cases = cloneFaults(home);
        std::ranges::move(menuFaults(home), std::back_inserter(cases));
        const auto isMeant = [&](const FaultCase& tried) {
            return only.empty() || only == tried.name;
        };
        if (std::ranges::none_of(cases, isMeant)) {
            std::cerr << "No operation is called “" << only << "”.\n";
            return 2;
        }
        FaultTable table(stride);
        for (const FaultCase& tried : cases) {
            if (isMeant(tried)) {
                table.add(tried);
            }
        }
        return table.finish() ? 0 : 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 2;
    }
}
