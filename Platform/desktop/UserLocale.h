#pragma once

#include <string>

/// Whose language the user's texts are in, as identifiers like "de_DE". Empty for none in
/// particular; any text where the user's settings are odd.
namespace quorvel::UserLocale {

/// For the order of names.
[[nodiscard]] std::string forOrder();

/// For what counts as the same letter in upper and lower case.
[[nodiscard]] std::string forCase();

} // namespace quorvel::UserLocale
