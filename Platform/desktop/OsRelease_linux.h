#pragma once

#include <string>
#include <string_view>

namespace quorvel {

/// The distribution's name and version, such as "Debian GNU/Linux 12", from what an os-release file
/// holds; the name alone where no version is given, empty without a name that is plain text.
[[nodiscard]] std::string distributionIn(std::string_view osRelease);

/// The same of this system; empty where it has no such file.
[[nodiscard]] std::string distribution();

} // namespace quorvel
