#include "Platform/PlatformError.h"

#include <cctype>
#include <cerrno>

namespace quorvel {
namespace {

std::string lowerFirst(std::string text) {
    // "Permission denied" reads as the end of a sentence; "I/O error" keeps its capitals.
    if (text.size() > 1 && std::islower(static_cast<unsigned char>(text[1])) != 0) {
        text[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(text[0])));
    }
    return text;
}

std::string shownName(const std::filesystem::path& path) {
    std::string text = path.string();
    while (text.size() > 1 && text.back() == '/') {
        text.pop_back();
    }
    const std::string name = std::filesystem::path(text).filename().string();
    return name.empty() ? text : name;
}

std::string sentence(const std::error_code& code, const std::filesystem::path& path,
                     const std::string& action) {
    return "“" + shownName(path) + "” couldn’t be " + action + ": " + lowerFirst(code.message());
}

} // namespace

PlatformError::PlatformError(std::error_code code, std::filesystem::path path,
                             const std::string& action)
    : std::runtime_error(sentence(code, path, action)),
      code_(code),
      path_(std::move(path)) {}

PlatformError PlatformError::fromErrno(const std::filesystem::path& path,
                                       const std::string& action) {
    return {std::error_code(errno, std::generic_category()), path, action};
}

} // namespace quorvel
