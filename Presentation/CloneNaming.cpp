#include "Presentation/CloneNaming.h"

#include "Base/PathText.h"
#include "Base/Text.h"
#include "Base/Utf8.h"

#include <algorithm>
#include <cctype>

namespace quorvel {
namespace {

bool isAsciiLetterOrDigit(char c) {
    return static_cast<unsigned char>(c) < 0x80 && std::isalnum(static_cast<unsigned char>(c)) != 0;
}

bool isHexadecimal(char c) {
    return std::isxdigit(static_cast<unsigned char>(c)) != 0;
}

// A letter, then letters, digits and three signs.
bool isScheme(std::string_view text) {
    return !text.empty() && std::isdigit(static_cast<unsigned char>(text.front())) == 0 &&
           isAsciiLetterOrDigit(text.front()) && std::all_of(text.begin(), text.end(), [](char c) {
               return isAsciiLetterOrDigit(c) || c == '+' || c == '-' || c == '.';
           });
}

// What a registered name may contain besides percent signs. Users type other scripts unencoded.
bool isNameCharacter(char c) {
    constexpr std::string_view signs = "-._~!$&'()*+,;=";
    return isAsciiLetterOrDigit(c) || static_cast<unsigned char>(c) >= 0x80 ||
           signs.find(c) != std::string_view::npos;
}

// With percent-encoding decoded; std::nullopt if the text can't be part of an address.
std::optional<std::string> decoded(std::string_view text, std::string_view alsoAllowed = {}) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            if (!isNameCharacter(text[at]) &&
                alsoAllowed.find(text[at]) == std::string_view::npos) {
                return std::nullopt;
            }
            result += text[at];
            continue;
        }
        if (at + 2 >= text.size() || !isHexadecimal(text[at + 1]) || !isHexadecimal(text[at + 2])) {
            return std::nullopt;
        }
        result += static_cast<char>(std::stoi(std::string(text.substr(at + 1, 2)), nullptr, 16));
        at += 2;
    }
    return isUtf8(result) ? std::optional(result) : std::nullopt;
}

bool isPort(std::string_view text) {
    return text.empty() || (text.front() == ':' &&
                            text.find_first_not_of("0123456789", 1) == std::string_view::npos);
}

// The numeric address between brackets.
std::optional<std::string> literalHost(std::string_view authority) {
    const std::size_t end = authority.find(']');
    if (end == std::string_view::npos || !isPort(authority.substr(end + 1))) {
        return std::nullopt;
    }
    const std::string_view literal = authority.substr(1, end - 1);
    return literal.find(':') == std::string_view::npos ? std::nullopt : decoded(literal, ":");
}

std::optional<std::string> hostOf(std::string_view address) {
    const std::size_t scheme = address.find("://");
    if (scheme != std::string_view::npos && !isScheme(address.substr(0, scheme))) {
        return std::nullopt;
    }
    std::string_view authority =
        scheme == std::string_view::npos ? address : address.substr(scheme + 3);
    authority = authority.substr(0, authority.find_first_of("/?#"));
    if (const std::size_t user = authority.rfind('@'); user != std::string_view::npos) {
        if (!decoded(authority.substr(0, user), ":")) {
            return std::nullopt;
        }
        authority.remove_prefix(user + 1);
    }
    if (authority.starts_with('[')) {
        return literalHost(authority);
    }
    const std::size_t end = std::min(authority.find(':'), authority.size());
    return isPort(authority.substr(end)) ? decoded(authority.substr(0, end)) : std::nullopt;
}

} // namespace

std::string suggestedName(const std::string& appName, const std::set<std::string>& taken) {
    const auto numbered = [&](int number) { return appName + " (" + std::to_string(number) + ")"; };
    int number = 2;
    while (taken.contains(appName) && taken.contains(numbered(number))) {
        ++number;
    }
    return numbered(number);
}

std::string nextFreeName(const std::string& name,
                         const std::function<bool(const std::string& name)>& isTaken) {
    const std::size_t open = name.rfind(" (");
    const std::string digits = "0123456789";
    const bool isNumbered = open != std::string::npos && open > 0 && name.ends_with(')') &&
                            open + 3 < name.size() &&
                            name.find_first_not_of(digits, open + 2) == name.size() - 1;
    const std::string base = isNumbered ? name.substr(0, open) : name;
    int number = 2;
    const auto numbered = [&] { return base + " (" + std::to_string(number) + ")"; };
    while (isTaken(numbered())) {
        ++number;
    }
    return numbered();
}

std::optional<std::string> nameForWebAddress(std::string_view address) {
    std::optional<std::string> host = hostOf(address);
    if (!host || host->empty()) {
        return std::nullopt;
    }
    constexpr std::string_view prefix = "www.";
    for (std::size_t at = host->find(prefix); at != host->npos; at = host->find(prefix, at)) {
        host->erase(at, prefix.size());
    }
    return Text::capitalizingWords(*host);
}

std::optional<std::string> nameForCommand(std::string_view path) {
    const std::string last = lastPathComponent(path);
    return last.empty() || last == "/" ? std::nullopt
                                       : std::optional(Text::capitalizingWords(last));
}

} // namespace quorvel
