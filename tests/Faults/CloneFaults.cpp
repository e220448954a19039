#include "tests/Faults/CloneFaults.h"

#include "tests/support/AppBundles.h"

#include <functional>
#include <memory>
#include <stdexcept>

namespace quorvel::testing {
namespace {

using Tree = FaultHome::Tree;

struct Operation {
    std::string name{};
    FaultHome::Words words{};
    bool isResumable =
        false; ///< may stop half-way, as long as it says so and goes on when repeated
    std::function<void()> prepare{}; ///< if set, called in a home that was restored
};

// The state that a command begins with and the one that it makes.
struct Ends {
    Tree before{};
    Tree after{};
};

std::vector<Operation> operations(const FaultHome& home) {
    const std::string runner = runnerProgram();
    return {
        {"create",
         {"create", "--kind", "web", "--name", "New", "--url", "https://n.test", "--runner",
          runner}},
        {"create over a clone",
         {"create", "--kind", "web", "--name", "Work", "--url", "https://n.test", "--replace",
          "--label", "N", "--runner", runner}},
        {"create with a seed",
         {"create", "--target", home.application().string(), "--name", "New", "--seed", "--runner",
          runner}},
        {"edit", {"edit", "Work", "--url", "https://n.test", "--label", "N", "--hide-icon"}},
        {"rename", {"rename", "Work", "Office"}},
        {"rename with data", {"rename", "Work", "Office", "--move-data"}},
        {"duplicate", {"duplicate", "Work", "Second", "--runner", runner}},
        {"duplicate with data", {"duplicate", "Work", "Second", "--with-data", "--runner", runner}},
        {"refresh", {"refresh", "Work", "--runner", runner}},
        {"migrate", {"migrate", "Work"}, true},
        {"delete", {"delete", "Work", "--yes"}},
        {"delete with data", {"delete", "Work", "--including-data", "--yes"}},
        {.name = "delete a damaged clone",
         .words = {"delete", home.at("Applications/Work.app").string(), "--yes"},
         .prepare =
             [config = home.at("Applications/Work.app/Contents/Resources/instance.json")] {
                 write(config, "{");
             }},
    };
}

// A clone that can't be found any more can't be deleted again either.
bool listsTheClone(const Tree& before, const Tree& now) {
    const std::string config = "Applications/Work.app/Contents/Resources/instance.json";
    return before.contains(config) && now.contains(config);
}

std::string resumed(FaultHome& home, const Operation& operation, const Tree& after) {
    const bool done = FaultHome::apart([&] { return home.perform(operation.words); }) == 0;
    return done && home.clones() == after ? "" : "repeated, it ends with " + home.message();
}

std::string judge(FaultHome& home, const Operation& operation, const Ends& ends,
                  const FaultOutcome& outcome, bool wasKilled) {
    const std::string message = home.message();
    home.startNext();
    for (const std::string& problem : {home.menuProblem(), home.othersProblem()}) {
        if (!problem.empty()) {
            return problem;
        }
    }
    const Tree now = home.clones();
    if (!wasKilled && outcome.status == 0) {
        return now == ends.after ? ""
                                 : "it reported success, " + FaultHome::difference(ends.after, now);
    }
    if (!wasKilled && message.empty()) {
        return "it failed without a message";
    }
    if (now == ends.before || (wasKilled && now == ends.after)) {
        return "";
    }
    return operation.isResumable && listsTheClone(ends.before, now)
               ? resumed(home, operation, ends.after)
               : "it is neither old nor new: " + FaultHome::difference(ends.before, now);
}

void prepare(const FaultHome& home, const Operation& operation) {
    home.restore();
    if (operation.prepare) {
        operation.prepare();
    }
}

Ends endsOf(FaultHome& home, const Operation& operation) {
    Ends ends;
    prepare(home, operation);
    ends.before = home.clones();
    if (FaultHome::apart([&] { return home.perform(operation.words); }) != 0) {
        throw std::runtime_error(operation.name + " fails by itself: " + home.message());
    }
    ends.after = home.clones();
    return ends;
}

} // namespace

std::vector<FaultCase> cloneFaults(FaultHome& home) {
    std::vector<FaultCase> cases;
    for (const Operation& operation : operations(home)) {
        const auto ends = std::make_shared<Ends>(); // known when it is first prepared
        cases.push_back({.name = operation.name,
                         .prepare =
                             [&home, operation, ends] {
                                 if (ends->after.empty()) {
                                     *ends = endsOf(home, operation);
                                 }
                                 prepare(home, operation);
                             },
                         .change = [&home, operation] { return home.perform(operation.words); },
                         .judge =
                             [&home, operation, ends](const FaultOutcome& outcome, bool wasKilled) {
                                 return judge(home, operation, *ends, outcome, wasKilled);
                             }});
    }
    return cases;
}

} // namespace quorvel::testing
