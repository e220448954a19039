#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns the absolute path that a "file" URL of this machine names; std::nullopt for any other
/// URL.
[[nodiscard]] std::optional<std::string> pathOfFileUrl(std::string_view url);

} // namespace quorvel
