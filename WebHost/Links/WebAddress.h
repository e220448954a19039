#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The addresses of web pages, as text.
namespace quorvel {

/// What a web clone shows first.
struct StartAddress {
    enum class Case {
        page,   ///< the page at `text`
        none,   ///< it has no address
        refused ///< it isn't a web address; `text` says why, as the end of a sentence
    };
    Case kind = Case::none;
    std::string text{};

    bool operator==(const StartAddress&) const = default;
};

/// Returns what a clone with that address shows first. An address without a scheme gets "https".
[[nodiscard]] StartAddress startAddress(const std::optional<std::string>& url);

/// Returns the address's scheme in lower case; empty if it has none.
[[nodiscard]] std::string schemeOf(std::string_view address);

/// Returns the host of an address with "//", in lower case and without user, port or brackets;
/// empty if it has none.
[[nodiscard]] std::string hostOf(std::string_view address);

/// Returns scheme, host and port of a web address ("https://example.com:8080"), by which its
/// permissions are kept; empty for any other address.
[[nodiscard]] std::string originOf(std::string_view address);

/// Returns whether the host is this computer: "localhost", or an IPv4 address that begins with 127.
[[nodiscard]] bool isThisComputer(std::string_view host);

/// Returns whether the address is one of the web: its scheme is "http" or "https".
[[nodiscard]] bool isWebAddress(std::string_view address);

} // namespace quorvel
