#include "LinkDoor/LinkAddress.h"

#include "Base/AsciiCase.h"
#include "Base/TerminalText.h"
#include "Base/Utf8.h"

#include <algorithm>
#include <optional>

namespace quorvel {
namespace {

// What comes before the first colon, if it is a scheme that is handed on.
std::optional<std::string> linkSchemeOf(std::string_view text) {
    const std::string scheme = asciiLower(text.substr(0, std::min(text.find(':'), std::size_t{8})));
    const bool isKnown =
        std::find(linkSchemes.begin(), linkSchemes.end(), scheme) != linkSchemes.end();
    return isKnown && scheme.size() < text.size() ? std::optional(scheme) : std::nullopt;
}

// The host in "user@host:port", or in "[host]:port".
std::string_view hostIn(std::string_view authority) {
    authority.remove_prefix(authority.rfind('@') + 1); // npos + 1 is 0
    if (authority.starts_with('[')) {
        const std::size_t end = authority.find(']');
        return end == std::string_view::npos ? std::string_view() : authority.substr(1, end - 1);
    }
    return authority.substr(0, authority.find(':'));
}

void requireHost(std::string_view afterScheme) {
    if (!afterScheme.starts_with("//")) {
        throw LinkAddressError("the address has no host");
    }
    afterScheme.remove_prefix(2);
    const std::string_view authority = afterScheme.substr(0, afterScheme.find_first_of("/?#"));
    if (authority.find(' ') != std::string_view::npos) {
        throw LinkAddressError("the address has a space in its host");
    }
    const std::string_view host = hostIn(authority);
    if (host.empty() || host.find(']') != std::string_view::npos) {
        throw LinkAddressError("the address has no host");
    }
}

} // namespace

bool hasLinkScheme(std::string_view text) noexcept {
    return linkSchemeOf(text).has_value();
}

std::string checkedLinkScheme(std::string_view address) {
    if (address.size() > longestLinkAddress) {
        throw LinkAddressError("the address is longer than 32 KiB");
    }
    if (!isUtf8(address)) {
        throw LinkAddressError("the address is not valid UTF-8");
    }
    if (withoutControls(address) != address) {
        throw LinkAddressError("the address contains control characters");
    }
    const std::optional<std::string> scheme = linkSchemeOf(address);
    if (!scheme) {
        throw LinkAddressError("it is not a web or mail address");
    }
    const std::string_view beforeQuery = address.substr(0, address.find_first_of("?#"));
    if (beforeQuery.find('\\') != std::string_view::npos) {
        throw LinkAddressError("the address contains a backslash");
    }
    if (*scheme != "mailto") {
        requireHost(address.substr(scheme->size() + 1));
    }
    return *scheme;
}

} // namespace quorvel
