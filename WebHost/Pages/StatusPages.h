#pragma once

#include <string>
#include <string_view>

/// The pages that the host shows in place of a site's, as HTML. They contain no scripts.
namespace quorvel {

/// Returns the page for a clone without an address.
[[nodiscard]] std::string noAddressPage(std::string_view cloneName);
/// Returns the page for one that can't be loaded; the reason is a sentence.
[[nodiscard]] std::string offlinePage(std::string_view address, std::string_view reason);
/// Returns the page for a server that doesn't prove who it is; the reason is a sentence, and the
/// details are lines, or empty.
[[nodiscard]] std::string certificatePage(std::string_view address, std::string_view reason,
                                          std::string_view details);
/// Returns the page for one that crashed several times.
[[nodiscard]] std::string crashPage(std::string_view address);

/// Returns the text without unsafe characters, escaped for HTML and its attributes.
[[nodiscard]] std::string htmlText(std::string_view text);

} // namespace quorvel
