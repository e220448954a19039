#include "Platform/processes/ProcessReplacement.h"

#include <cstdlib>
#include <unistd.h>

namespace quorvel {

void replaceEnvironment(const Environment& environment) {
    for (const auto& [name, value] : currentEnvironment()) {
        ::unsetenv(name.c_str());
    }
    for (const auto& [name, value] : environment) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
}

void replaceProcess(const std::filesystem::path& program,
                    const std::vector<std::string>& arguments) {
    std::vector<std::string> texts{program.native()};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> words;
    words.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        words.push_back(text.data());
    }
    words.push_back(nullptr);
    ::execv(program.c_str(), words.data());
    throw PlatformError::fromErrno(program, "started");
}

} // namespace quorvel
