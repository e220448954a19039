#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Unicode text services. All text is UTF-8; invalid bytes count as U+FFFD. Thread-safe.
namespace quorvel::Text {

/// Returns the indexes of `names` in the order of `locale`, an identifier like "de_DE", ignoring
/// case. Uses the root locale if there is no such locale. Equal names keep their order.
[[nodiscard]] std::vector<std::size_t> sortedOrder(const std::vector<std::string_view>& names,
                                                   const std::string& locale);

/// Returns whether `text` contains `part`, comparing whole characters: case is ignored by the rules
/// of `locale`, canonically equivalent characters are equal, different marks are not. Returns false
/// if `part` is empty.
[[nodiscard]] bool containsIgnoringCase(std::string_view text, std::string_view part,
                                        std::string_view locale);

/// Returns `text` in upper case by Unicode's full, locale-independent mapping ("ß" becomes "SS").
[[nodiscard]] std::string upperCased(std::string_view text);

/// Returns `text` in lower case by the same kind of mapping.
[[nodiscard]] std::string lowerCased(std::string_view text);

/// Returns `text` with each word capitalized: cased letters become lower case after another cased
/// letter, or after an apostrophe that follows one, and title case elsewhere. Marks count as part
/// of the character before them.
[[nodiscard]] std::string capitalizingWords(std::string_view text);

/// Returns `text` with every scalar that is not a letter, mark or number replaced.
[[nodiscard]] std::string replacingNonAlphanumerics(std::string_view text, char replacement);

/// Returns `text` without leading and trailing tabs and spaces of any script. Line breaks are kept.
[[nodiscard]] std::string trimmingWhitespace(std::string_view text);

/// Returns `text` without leading and trailing white space, including line breaks.
[[nodiscard]] std::string trimmingWhitespaceAndNewlines(std::string_view text);

/// Returns the first capture group of `pattern`'s first match in `text`, or std::nullopt if there
/// is no match or the group did not participate. Throws `std::invalid_argument` if `pattern` is not
/// a valid ICU regular expression.
[[nodiscard]] std::optional<std::string> firstCapture(std::string_view pattern,
                                                      std::string_view text);

} // namespace quorvel::Text
