#pragma once

#include "Platform/entries/InstalledApplications.h"

#include <optional>
#include <string>

namespace quorvel {

/// Returns whether links that are clicked in a clone open in the clone, or in a browser of the
/// clone's own, unless something is done about it. On macOS the system opens them with the user's
/// default browser.
[[nodiscard]] bool linksStayInsideClones() noexcept;

/// Returns the application that this process's environment names as the default for a MIME type,
/// such as "x-scheme-handler/https": the first that is installed of those in the `mimeapps.list`
/// files, in their order of precedence, those for the current desktop before the others. Returns
/// std::nullopt if there is none, and on macOS.
[[nodiscard]] std::optional<InstalledApplication> defaultApplication(const std::string& mimeType);

} // namespace quorvel
