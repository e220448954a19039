#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// The text of a `mimeapps.list`, which says with which applications files and addresses are
/// opened. Applications are given by the ids of their desktop entries.
namespace quorvel {

/// The list for every desktop.
inline constexpr std::string_view commonMimeAppsList = "mimeapps.list";

/// Returns the names of the lists that count in one folder, the most important first: those for the
/// desktops that `currentDesktops` (the value of `XDG_CURRENT_DESKTOP`) names, then the common one.
[[nodiscard]] std::vector<std::string> mimeAppsListNames(std::string_view currentDesktops);

/// Returns the applications that the list names as the default for a type, the best first.
[[nodiscard]] std::vector<std::string> defaultHandlersIn(std::string_view list,
                                                         std::string_view mimeType);

/// Returns the list with `id` in front of the default applications of these types. Other lines stay
/// as they are, byte for byte.
[[nodiscard]] std::string preferringHandler(std::string_view list,
                                            std::span<const std::string> mimeTypes,
                                            std::string_view id);

/// Returns the list without `id` among the default applications of any type. Other lines stay as
/// they are, byte for byte.
[[nodiscard]] std::string withoutHandler(std::string_view list, std::string_view id);

} // namespace quorvel
