#pragma once

#include <optional>
#include <string>

namespace quorvel {

/// Returns the program that opens links for this value of `CloneOptions::links`: the runner of the
/// chosen clone, or a text that can't be started if there is no such clone; empty if no clone is
/// chosen.
[[nodiscard]] std::string linkOpenerProgram(const std::optional<std::string>& links);

} // namespace quorvel
