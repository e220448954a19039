#pragma once

#include "WebHost/Settings/SiteSettings.h"

#include <webkit/webkit.h>

namespace quorvel {

/// The parts of the engine that a clone's settings change.
struct SettingsTarget {
    WebKitWebContext* context;
    WebKitNetworkSession* session;
    WebKitSettings* settings; ///< of the pages
};

/// Applies the settings, from the next page on.
void applySiteSettings(const SettingsTarget& target, const SiteSettings& settings);

/// Switches off what would let a page read files, other sites or the inspector, regardless of the
/// engine's defaults.
void restrictPages(WebKitSettings* settings);

/// Tells pages the user's languages.
void setPageLanguages(WebKitWebContext* context);

} // namespace quorvel
