#include "Platform/files/PlatformError.h"

#include "Base/PathText.h"

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

std::string sentence(const std::string& reason, const std::filesystem::path& path,
                     const std::string& action) {
    return "“" + lastPathComponent(path) + "” couldn’t be " + action + ": " + reason;
}

} // namespace

PlatformError::PlatformError(std::error_code code, const std::filesystem::path& path,
                             const std::string& action)
    : PlatformError(sentence(lowerFirst(code.message()), path, action), code, path) {}

PlatformError::PlatformError(const std::string& sentence, std::error_code code,
                             std::filesystem::path path)
    : Error(sentence),
      code_(code),
      path_(std::move(path)) {}

PlatformError PlatformError::fromErrno(const std::filesystem::path& path,
                                       const std::string& action) {
    return {std::error_code(errno, std::generic_category()), path, action};
}

PlatformError PlatformError::because(const std::string& reason, const std::filesystem::path& path,
                                     const std::string& action) {
    return {sentence(reason, path, action), std::make_error_code(std::errc::io_error), path};
}

PlatformError PlatformError::withDescription(const std::string& sentence,
                                             const std::filesystem::path& path) {
    return {sentence, std::make_error_code(std::errc::io_error), path};
}

PlatformError PlatformError::inside(std::error_code code, const std::filesystem::path& inside,
                                    const std::filesystem::path& path, const std::string& action) {
    const std::string where = inside.empty() ? "" : "“" + inside.string() + "”: ";
    return {sentence(where + lowerFirst(code.message()), path, action), code, path};
}

} // namespace quorvel
