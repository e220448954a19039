#pragma once

#include <map>
#include <string>

namespace quorvel {

using Environment = std::map<std::string, std::string>;

/// Returns the current environment of this process.
[[nodiscard]] Environment currentEnvironment();

/// Replaces the environment of this process, in which no other thread may run.
void replaceEnvironment(const Environment& environment);

/// Returns the value of a variable; empty if it is not set.
[[nodiscard]] std::string valueOf(const Environment& environment, const std::string& name);

} // namespace quorvel
