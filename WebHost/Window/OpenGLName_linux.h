#pragma once

#include <string>

namespace quorvel {

/// Returns what the display's OpenGL calls itself, or an empty text if there is none. GTK must have
/// been initialised.
[[nodiscard]] std::string openGLName();

} // namespace quorvel
