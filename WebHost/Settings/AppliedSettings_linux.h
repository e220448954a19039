#pragma once

#include "WebHost/Settings/SiteSettings.h"

#include <webkit/webkit.h>

namespace quorvel {

/// What of the engine a clone's settings change.
struct SettingsTarget {
    WebKitWebContext* context;
    WebKitNetworkSession* session;
    WebKitSettings* settings; ///< of the pages
};

/// Has the engine do as the settings say, from the next page on.
void applySiteSettings(const SettingsTarget& target, const SiteSettings& settings);

/// Switches off what would let a page read files, other sites or the inspector, with any
/// defaults of the engine.
void restrictPages(WebKitSettings* settings);

/// Tells pages the user's languages.
void setPageLanguages(WebKitWebContext* context);

} // namespace quorvel
