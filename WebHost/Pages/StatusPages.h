#pragma once

#include <string>
#include <string_view>

/// The pages that the host shows where there is none of the site. They contain no script.
namespace quorvel {

/// The clone has no address.
[[nodiscard]] std::string noAddressPage(std::string_view cloneName);
/// The page can't be loaded, for this reason (a sentence).
[[nodiscard]] std::string offlinePage(std::string_view address, std::string_view reason);
/// The server doesn't prove who it is; the reason is a sentence, and the details are lines.
[[nodiscard]] std::string certificatePage(std::string_view address, std::string_view reason,
                                          std::string_view details);
/// The page crashed again and again.
[[nodiscard]] std::string crashPage(std::string_view address);

/// Returns the text as it is written in HTML, also inside attributes.
[[nodiscard]] std::string htmlText(std::string_view text);

} // namespace quorvel
