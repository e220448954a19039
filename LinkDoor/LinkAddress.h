#pragma once

#include "Base/Error.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace quorvel {

/// Why an address is not handed on. The text completes a sentence: "the address has no host".
class LinkAddressError : public Error {
public:
    using Error::Error;
};

/// The schemes of the addresses that are handed on, in lower case.
inline constexpr std::array<std::string_view, 3> linkSchemes{"http", "https", "mailto"};

/// The longest address that is handed on, in bytes.
inline constexpr std::size_t longestLinkAddress = std::size_t{32} << 10U;

/// Returns whether the text begins with the scheme of a web or mail address, in any case. Nothing
/// else is checked.
[[nodiscard]] bool hasLinkScheme(std::string_view text) noexcept;

/// Returns the scheme of an address that may be handed to another program as one argument, in lower
/// case: "http", "https" or "mailto". Throws `LinkAddressError` for an address that is too long,
/// contains control characters or is not UTF-8, has another scheme or no host, or that programs
/// read in different ways: with a backslash before the first "?" or "#", or a space in its host.
[[nodiscard]] std::string checkedLinkScheme(std::string_view address);

} // namespace quorvel
