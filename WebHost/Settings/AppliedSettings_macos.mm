#include "WebHost/Settings/AppliedSettings_macos.h"

#include "WebHost/NSText_macos.h"

#include <Network/Network.h>

namespace quorvel {
namespace {

NSAppearance* appearanceFor(PageColors colors) {
    switch (colors) {
    case PageColors::light:
        return [NSAppearance appearanceNamed:NSAppearanceNameAqua];
    case PageColors::dark:
        return [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
    case PageColors::system:
        return nil;
    }
    return nil;
}

bool isSocks(const ProxyServer& proxy) {
    return proxy.scheme == "socks" || proxy.scheme == "socks5";
}

void applyProxy(WKWebsiteDataStore* store, const std::optional<ProxyServer>& proxy) {
    if (@available(macOS 14.0, *)) {
        if (!proxy) {
            store.proxyConfigurations = @[];
            return;
        }
        nw_endpoint_t const place =
            nw_endpoint_create_host(proxy->host.c_str(), proxy->port.c_str());
        nw_proxy_config_t const used =
            isSocks(*proxy) ? nw_proxy_config_create_socksv5(place)
                            : nw_proxy_config_create_http_connect(
                                  place, proxy->scheme == "https" ? nw_tls_create_options() : nil);
        // A user who sets a proxy may not want to be seen without it.
        nw_proxy_config_set_failover_allowed(used, false);
        store.proxyConfigurations = @[ used ];
    }
}

} // namespace

bool canUseProxies() {
    if (@available(macOS 14.0, *)) {
        return true;
    }
    return false;
}

std::string unusableHere(const SiteSettings& settings) {
    if (settings.proxy == ProxyUse::none) {
        return "Connections without the system’s proxy are not possible on macOS. The system’s "
               "settings apply.";
    }
    const auto proxy = proxyServer(settings);
    if (proxy && !canUseProxies()) {
        return "A proxy of its own needs macOS 14. The proxy is not in use.";
    }
    if (proxy && proxy->scheme == "socks4") {
        return "Proxies of SOCKS 4 can’t be used on macOS. The proxy is not in use.";
    }
    return {};
}

bool lacksItsProxy(const SiteSettings& settings) {
    return proxyServer(settings) && !unusableHere(settings).empty();
}

void applySiteSettings(WKWebsiteDataStore* store, const SiteSettings& settings) {
    NSApp.appearance = appearanceFor(settings.colors);
    // Pages that are open must not go on without the proxy that they had.
    if (!lacksItsProxy(settings)) {
        applyProxy(store, proxyServer(settings));
    }
}

void applyUserAgent(WKWebView* view, const SiteSettings& settings) {
    view.customUserAgent = settings.userAgent.empty() ? nil : nsText(settings.userAgent);
}

} // namespace quorvel
