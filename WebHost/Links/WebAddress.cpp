#include "WebHost/Links/WebAddress.h"

#include "Base/AsciiCase.h"
#include "LinkDoor/LinkAddress.h"

#include <algorithm>

namespace quorvel {
namespace {

constexpr std::string_view blanks = " \t\r\n\f\v";

bool isLetter(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

bool isDigit(char byte) {
    return byte >= '0' && byte <= '9';
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(blanks);
    return first == std::string_view::npos
               ? std::string_view()
               : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// "localhost:8080/x" has a port, and no scheme.
bool isPort(std::string_view afterColon) {
    const std::string_view number = afterColon.substr(0, afterColon.find_first_of("/?#"));
    return !number.empty() && std::all_of(number.begin(), number.end(), isDigit);
}

// What is between "//" and the path; empty without "//".
std::string_view authorityOf(std::string_view address) {
    const std::size_t colon = address.find(':');
    if (colon == std::string_view::npos || !address.substr(colon + 1).starts_with("//")) {
        return {};
    }
    address.remove_prefix(colon + 3);
    return address.substr(0, address.find_first_of("/?#\\"));
}

// "host:port" in "user@host:port".
std::string_view placeOf(std::string_view address) {
    std::string_view authority = authorityOf(address);
    authority.remove_prefix(authority.rfind('@') + 1); // npos + 1 is 0
    return authority;
}

// Returns where the host ends and its port, if any, begins.
std::size_t endOfHost(std::string_view place) {
    const std::size_t bracket = place.starts_with('[') ? place.find(']') : 0;
    return bracket == std::string_view::npos ? place.size()
                                             : std::min(place.find(':', bracket), place.size());
}

} // namespace

std::string schemeOf(std::string_view address) {
    const std::string_view scheme = address.substr(0, address.find(':'));
    const bool isOne =
        scheme.size() < address.size() && !scheme.empty() && isLetter(scheme.front()) &&
        std::all_of(scheme.begin(), scheme.end(), [](char byte) {
            return isLetter(byte) || isDigit(byte) || byte == '+' || byte == '-' || byte == '.';
        });
    return isOne ? asciiLower(scheme) : std::string();
}

std::string hostOf(std::string_view address) {
    const std::string_view place = placeOf(address);
    std::string_view host = place.substr(0, endOfHost(place));
    if (host.size() > 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    return asciiLower(host);
}

std::string originOf(std::string_view address) {
    if (!isWebAddress(address) || hostOf(address).empty()) {
        return {};
    }
    const std::string scheme = schemeOf(address);
    std::string place = asciiLower(placeOf(address));
    const std::string usual = scheme == "http" ? ":80" : ":443";
    if (place.substr(endOfHost(place)) == usual) {
        place.resize(endOfHost(place));
    }
    return scheme + "://" + place;
}

bool isThisComputer(std::string_view host) {
    return host == "localhost" ||
           (host.starts_with("127.") && std::all_of(host.begin(), host.end(), [](char byte) {
                return isDigit(byte) || byte == '.';
            }));
}

bool isWebAddress(std::string_view address) {
    const std::string scheme = schemeOf(address);
    return scheme == "http" || scheme == "https";
}

StartAddress startAddress(const std::optional<std::string>& url) {
    const std::string_view typed = url ? trimmed(*url) : std::string_view();
    if (typed.empty()) {
        return {};
    }
    std::string address(typed);
    if (schemeOf(typed).empty() || isPort(typed.substr(typed.find(':') + 1))) {
        address = "https://" + address.substr(address.starts_with("//") ? 2 : 0);
    }
    if (!isWebAddress(address)) {
        return {StartAddress::Case::refused, "it is not a web address"};
    }
    try {
        (void)checkedLinkScheme(address);
    } catch (const LinkAddressError& error) {
        return {StartAddress::Case::refused, error.description()};
    }
    return {StartAddress::Case::page, address};
}

} // namespace quorvel
