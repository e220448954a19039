#pragma once

#include <string>

namespace quorvel {

/// Returns the part of a host that all hosts of its site are likely to share, "example.co.uk" for
/// "mail.example.co.uk", where the system has no list of public suffixes. Returns an empty text for
/// an address in numbers and for a name without a dot.
[[nodiscard]] std::string guessedSite(const std::string& host);

} // namespace quorvel
