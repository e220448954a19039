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

/// Has the application's colors and the connections of its store be as the settings say. A proxy
/// that can't be used on this system leaves the connections as they were.
void applySiteSettings(WKWebsiteDataStore* _Nonnull store, const SiteSettings& settings);

/// Has a view tell pages the chosen user agent from the next one on.
void applyUserAgent(WKWebView* _Nonnull view, const SiteSettings& settings);

} // namespace quorvel
