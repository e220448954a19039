#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

/// The texts of this layer are English. A front end with a catalogue passes in a function that
/// looks them up; each text is an argument of a call of `translate`, where extraction tools find
/// it.
namespace quorvel {

/// Returns `text` in the user's language, as UTF-8. `context` distinguishes equal texts of
/// different meaning. "%1" to "%9" are placeholders for arguments, which a translation must keep.
using Translate = std::function<std::string(const char* context, const char* text)>;

/// The `Translate` of front ends without a catalogue: returns `text` itself.
[[nodiscard]] std::string inEnglish(const char* context, const char* text);

/// Returns `text` with "%1" replaced by the first argument, and so on. Placeholders inside
/// arguments are not replaced; placeholders without an argument are kept.
[[nodiscard]] std::string filledIn(std::string_view text,
                                   std::initializer_list<std::string_view> arguments);

} // namespace quorvel
