#include "Platform/desktop/UserLocale.h"

#include <cstdlib>
#include <string_view>

namespace quorvel::UserLocale {
namespace {

// As in the C library, the first variable that is set decides. "C" is not a language.
std::string fromEnvironment(const char* category) {
    for (const char* variable : {"LC_ALL", category, "LANG"}) {
        const char* value = std::getenv(variable);
        if (value == nullptr || *value == '\0') {
            continue;
        }
        const std::string_view text(value);
        const std::string_view language = text.substr(0, text.find('.'));
        return language == "C" || language == "POSIX" ? std::string() : std::string(text);
    }
    return {};
}

} // namespace

std::string forOrder() {
    return fromEnvironment("LC_COLLATE");
}

std::string forCase() {
    return fromEnvironment("LC_CTYPE");
}

} // namespace quorvel::UserLocale
