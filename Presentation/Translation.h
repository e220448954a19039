#pragma once

#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>

/// The texts of this layer are English. A front end with a catalogue hands in what looks them up;
/// every one is the argument of a call of `translate`, where tools that collect texts find it.
namespace quorvel {

/// Returns `text` in the user's language, as UTF-8. `context` tells texts of different meaning
/// apart. "%1" to "%9" in a text are places for arguments and must come back with it.
using Translate = std::function<std::string(const char* context, const char* text)>;

/// The `Translate` of front ends without a catalogue: returns `text` itself.
[[nodiscard]] std::string inEnglish(const char* context, const char* text);

/// Returns `text` with "%1" replaced by the first argument, and so on. What an argument holds is
/// never taken for a place; places without an argument stay.
[[nodiscard]] std::string filledIn(std::string_view text,
                                   std::initializer_list<std::string_view> arguments);

} // namespace quorvel
