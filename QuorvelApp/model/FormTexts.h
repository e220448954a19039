#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Converts between the texts in a form's fields and the values that they represent.
namespace quorvel {

/// Returns one entry for each line with "=" and a key before it. The key is trimmed, the value is
/// not; the last line of a key counts.
[[nodiscard]] std::map<std::string, std::string> parseKeyValues(std::string_view text);

/// Returns one KEY=VALUE line for each of the entries that `parseKeyValues` reads back unchanged,
/// also from a text editor. The others are left out, as is what is too long to be edited.
[[nodiscard]] std::string keyValueText(const std::map<std::string, std::string>& entries);

/// Returns the pieces between white space of every kind.
[[nodiscard]] std::vector<std::string> splitIntoWords(std::string_view text);

/// Returns the pieces between white space, except for white space in double quotes, which belongs
/// to its piece. Only in quotes, "\"" and "\\" represent the second character, "\n", "\r" and "\t"
/// line breaks and a tab, and "\u" with four hexadecimal digits a UTF-16 unit. Returns
/// `std::nullopt` if a quote isn't closed.
[[nodiscard]] std::optional<std::vector<std::string>> splitOutsideQuotes(std::string_view text);

/// Returns a line that `splitOutsideQuotes` reads back as these words; only words that need quotes
/// are quoted.
[[nodiscard]] std::string quotedWords(const std::vector<std::string>& words);

} // namespace quorvel
