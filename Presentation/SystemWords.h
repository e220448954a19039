#pragma once

#include <string>

namespace quorvel {

/// The `Translate` for English in the words of the system that this program was built for. The
/// texts in the sources use the words of macOS; a catalogue (`quorvel_linux.ts`) replaces what is
/// called differently on another system. Returns `text` itself if the catalogue has nothing for it.
[[nodiscard]] std::string inSystemWords(const char* context, const char* text);

/// Returns the catalogue's text, or null if it has none.
[[nodiscard]] const char* systemWords(const char* context, const char* text);

} // namespace quorvel
