#pragma once

namespace quorvel {

/// Returns whether standard input comes from a terminal.
[[nodiscard]] bool inputIsTerminal();

/// Returns whether standard output goes to a terminal.
[[nodiscard]] bool outputIsTerminal();

} // namespace quorvel
