#include "tests/CommandLine/CommandLineHarness.h"

#include <nlohmann/json.hpp>

namespace quorvel::testing {

nlohmann::json CommandResult::json() const {
    return nlohmann::json::parse(output);
}

} // namespace quorvel::testing
