#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Unicode text services. All text is UTF-8; bytes that are not UTF-8 count as U+FFFD.
/// Every operation may be called from any thread.
namespace quorvel::Text {

/// Returns the indexes of `names` in the order of `locale`, an identifier like "de_DE", ignoring
/// case. Unicode's root order if there is no such locale. Equal names keep their order.
[[nodiscard]] std::vector<std::size_t> sortedOrder(const std::vector<std::string_view>& names,
                                                   const std::string& locale);

/// Returns whether `text` contains `part`, comparing whole characters: case is ignored by the rules
/// of `locale`, canonically equivalent characters are equal, different marks are not. An empty part
/// is never contained.
[[nodiscard]] bool containsIgnoringCase(std::string_view text, std::string_view part,
                                        std::string_view locale);

/// Full Unicode mappings in the user's locale-independent form ("ß" becomes "SS").
[[nodiscard]] std::string upperCased(std::string_view text);
[[nodiscard]] std::string lowerCased(std::string_view text);

/// Letters that have a case are capitals after anything else, small after such a letter and
/// after an apostrophe that follows one. Marks belong to the character before them.
[[nodiscard]] std::string capitalizingWords(std::string_view text);

/// `text` with every scalar that is no letter, mark or digit replaced by `replacement`.
[[nodiscard]] std::string replacingNonAlphanumerics(std::string_view text, char replacement);

/// Without the white space at both ends: spaces and tabs of every script, no line breaks.
[[nodiscard]] std::string trimmingWhitespace(std::string_view text);

/// Without the white space and line breaks at both ends.
[[nodiscard]] std::string trimmingWhitespaceAndNewlines(std::string_view text);

/// The first capture group of `pattern`'s first match in `text`; std::nullopt if there is no
/// match or the group took no part in it. `pattern` must be a valid ICU regular expression.
[[nodiscard]] std::optional<std::string> firstCapture(std::string_view pattern,
                                                      std::string_view text);

} // namespace quorvel::Text
