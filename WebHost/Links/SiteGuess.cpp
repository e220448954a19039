#include "WebHost/Links/SiteGuess.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quorvel {
namespace {

// Below a country's top-level domain, these are rarely sites themselves.
constexpr std::array<std::string_view, 12> sharedNames{"ac",  "co",   "com", "edu", "go", "gob",
                                                       "gov", "govt", "ne",  "net", "or", "org"};

bool isInNumbers(std::string_view host) {
    return host.find_first_not_of("0123456789.") == std::string_view::npos ||
           host.find(':') != std::string_view::npos;
}

// Where the label before `end` begins; `end` is at a dot or at the end.
std::size_t startOfLabel(std::string_view host, std::size_t end) {
    const std::size_t dot = end == 0 ? std::string_view::npos : host.rfind('.', end - 1);
    return dot == std::string_view::npos ? 0 : dot + 1;
}

} // namespace

std::string guessedSite(const std::string& host) {
    if (isInNumbers(host) || host.find('.') == std::string::npos) {
        return {};
    }
    const std::size_t top = startOfLabel(host, host.size());
    if (top == 0) {
        return {};
    }
    std::size_t site = startOfLabel(host, top - 1);
    const std::string_view second = std::string_view(host).substr(site, top - 1 - site);
    const bool isCountry = host.size() - top == 2;
    if (site > 0 && isCountry &&
        std::find(sharedNames.begin(), sharedNames.end(), second) != sharedNames.end()) {
        site = startOfLabel(host, site - 1);
    }
    return host.substr(site);
}

} // namespace quorvel
