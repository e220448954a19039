#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace quorvel {

/// Returns the settings in a database of dconf: their paths, such as "/org/gnome/gedit/tabs-size",
/// and their values as they are stored. Returns std::nullopt if it is malformed, or written on a
/// machine of another byte order.
[[nodiscard]] std::optional<std::map<std::string, std::string>>
dconfSettings(std::string_view bytes);

} // namespace quorvel
