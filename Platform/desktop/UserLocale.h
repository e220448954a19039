#pragma once

#include <string>

/// The user's locales, as identifiers like "de_DE". An empty text means none in particular. The
/// settings are not validated: any text may be returned.
namespace quorvel::UserLocale {

/// Returns the locale for sorting names.
[[nodiscard]] std::string forOrder();

/// Returns the locale for ignoring case.
[[nodiscard]] std::string forCase();

} // namespace quorvel::UserLocale
