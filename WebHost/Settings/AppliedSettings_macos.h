#pragma once

#include "WebHost/Settings/SiteSettings.h"

#import <WebKit/WebKit.h>

#include <string>

namespace quorvel {

/// Returns whether this version of the system lets a clone have a proxy of its own.
[[nodiscard]] bool canUseProxies();

/// Returns which of the settings can't be used on this system, as a sentence; empty if all can.
[[nodiscard]] std::string unusableHere(const SiteSettings& settings);

/// Returns whether the settings name a proxy that can't be used on this system.
[[nodiscard]] bool lacksItsProxy(const SiteSettings& settings);

/// Applies the settings to the application's colors and to the connections of its store. A proxy
/// that can't be used on this system leaves the connections as they were.
void applySiteSettings(WKWebsiteDataStore* _Nonnull store, const SiteSettings& settings);

/// Applies the chosen user agent to a view, from the next page on.
void applyUserAgent(WKWebView* _Nonnull view, const SiteSettings& settings);

} // namespace quorvel
