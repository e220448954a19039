#include "Platform/processes/Environment.h"

#include "Platform/processes/ProcessSpawning.h"

#include <cstdlib>
#include <string_view>

namespace quorvel {

Environment currentEnvironment() {
    Environment result;
    for (char** entry = ProcessSpawning::environmentBlock(); *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::size_t equals = text.find('=');
        if (equals != std::string_view::npos) {
            result.emplace(text.substr(0, equals), text.substr(equals + 1));
        }
    }
    return result;
}

void replaceEnvironment(const Environment& environment) {
    for (const auto& [name, value] : currentEnvironment()) {
        ::unsetenv(name.c_str());
    }
    for (const auto& [name, value] : environment) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
}

std::string valueOf(const Environment& environment, const std::string& name) {
    const auto found = environment.find(name);
    return found == environment.end() ? std::string() : found->second;
}

} // namespace quorvel
