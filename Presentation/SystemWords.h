#pragma once

#include <string>

namespace quorvel {

/// The `Translate` that says everything in English, but in the words of the system that this
/// program was built for: the texts in the sources are those of macOS, and a catalogue
/// (`quorvel_linux.ts`) replaces what is called differently elsewhere. Returns `text` itself if the
/// catalogue has nothing for it.
[[nodiscard]] std::string inSystemWords(const char* context, const char* text);

/// Returns the catalogue's text, or null if it has none.
[[nodiscard]] const char* systemWords(const char* context, const char* text);

} // namespace quorvel
