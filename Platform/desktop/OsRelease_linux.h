#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// Returns the distribution's name and version, such as "Debian GNU/Linux 12", from the contents of
/// an os-release file: only the name if there is no version, an empty text if the name is missing
/// or contains control characters.
[[nodiscard]] std::string distributionIn(std::string_view osRelease);

/// Returns the same for this system, or an empty text if it has no such file.
[[nodiscard]] std::string distribution();

} // namespace quorvel
