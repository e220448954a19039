#include "Platform/processes/ProcessReplacement.h"

#include "Platform/files/PlatformError.h"

#include <unistd.h>

namespace quorvel {

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
