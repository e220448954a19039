#include "Platform/desktop/OsRelease_linux.h"

#include "Base/SplitText.h"
#include "Base/Utf8.h"
#include "Platform/files/FileReading.h"

#include <algorithm>

namespace quorvel {
namespace {

// A value as a shell would read it: bare, in single quotes, or in double quotes with escapes.
std::string unquoted(std::string_view value) {
    while (!value.empty() &&
           (value.back() == ' ' || value.back() == '\t' || value.back() == '\r')) {
        value.remove_suffix(1);
    }
    const char quote = value.empty() ? '\0' : value.front();
    if (quote == '\'' || quote == '"') {
        value.remove_prefix(1);
        if (value.ends_with(quote)) {
            value.remove_suffix(1);
        }
    }
    std::string text;
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (value[at] == '\\' && quote != '\'' && at + 1 < value.size()) {
            ++at;
        }
        text += value[at];
    }
    return text;
}

bool isPlain(std::string_view text) {
    return isUtf8(text) && std::none_of(text.begin(), text.end(), [](char c) {
               return static_cast<unsigned char>(c) < ' ' || c == '\x7F';
           });
}

// The last assignment counts, as in a shell.
std::string valueOf(std::string_view key, std::string_view text) {
    std::string value;
    while (!text.empty()) {
        std::string_view line = takePart(text, '\n');
        if (line.starts_with(key) && line.substr(key.size()).starts_with('=')) {
            line.remove_prefix(key.size() + 1);
            value = unquoted(line);
        }
    }
    return isPlain(value) ? value : std::string();
}

} // namespace

std::string distributionIn(std::string_view osRelease) {
    std::string name = valueOf("NAME", osRelease);
    const std::string version = valueOf("VERSION_ID", osRelease);
    return name.empty() || version.empty() ? name : name + " " + version;
}

std::string distribution() {
    constexpr std::size_t limit = 65536;
    for (const char* file : {"/etc/os-release", "/usr/lib/os-release"}) {
        if (const auto text = readFile(file, limit)) {
            return distributionIn(*text);
        }
    }
    return {};
}

} // namespace quorvel
