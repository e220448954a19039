#pragma once

#include "LaunchKit/Records/EnumNames.h"
#include "WebHost/Storage/WebRecords.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the user chose for a web clone in its window.
namespace quorvel {

enum class PageColors { system, light, dark };
template<>
inline constexpr auto enumNames<PageColors> = namesOfAllCases<PageColors>({
    {PageColors::system, "system"},
    {PageColors::light, "light"},
    {PageColors::dark, "dark"},
});

enum class ProxyUse { system, none, address };
template<>
inline constexpr auto enumNames<ProxyUse> = namesOfAllCases<ProxyUse>({
    {ProxyUse::system, "system"},
    {ProxyUse::none, "none"},
    {ProxyUse::address, "address"},
});

/// Where links to a host open.
enum class LinkPlace { inside, outside };
template<>
inline constexpr auto enumNames<LinkPlace> = namesOfAllCases<LinkPlace>({
    {LinkPlace::inside, "inside"},
    {LinkPlace::outside, "outside"},
});

struct SiteSettings {
    PageColors colors = PageColors::system;
    bool checksSpelling = false;
    std::vector<std::string> spellingLanguages{}; ///< "en_US"; none: the user's
    std::string userAgent{};                      ///< empty: the engine's own
    ProxyUse proxy = ProxyUse::system;
    std::string proxyAddress{}; ///< "http://host:port", for `ProxyUse::address`
    /// Host: the name of a `LinkPlace`. A host's rule is also for the hosts below it.
    std::map<std::string, std::string> links{};

    bool operator==(const SiteSettings&) const = default;
};

/// Returns why a setting can't be used, as a sentence; empty if all can.
[[nodiscard]] std::string problemIn(const SiteSettings& settings);

/// A proxy's address in parts.
struct ProxyServer {
    std::string scheme{}; ///< "http", "https", "socks", "socks4" or "socks5"
    std::string host{};
    std::string port{};

    bool operator==(const ProxyServer&) const = default;
};

/// Returns the proxy that the settings name; std::nullopt if they name none, or none that can be
/// used.
[[nodiscard]] std::optional<ProxyServer> proxyServer(const SiteSettings& settings);

/// Returns the languages in a list such as "en_US, de-DE", each as "en_US".
[[nodiscard]] std::vector<std::string> languagesIn(std::string_view list);

/// Returns the host for a rule, from a host or an address that the user typed; empty if there is
/// none in it.
[[nodiscard]] std::string ruleHost(std::string_view typed);

/// Returns the rule for a host: that of the longest host that it is or is below.
[[nodiscard]] std::optional<LinkPlace> ruleFor(const SiteSettings& settings, std::string_view host);

/// The settings in a file below the clone's home.
class SiteSettingsStore {
public:
    /// Reads the file `path` below `home`. One that can't be used has the defaults: see `problem`.
    SiteSettingsStore(std::filesystem::path home, std::string path);

    /// Returns why the file is not used, as a sentence; empty if it is.
    [[nodiscard]] const std::string& problem() const { return file_.problem(); }
    [[nodiscard]] const SiteSettings& settings() const { return settings_; }

    /// Uses and keeps other settings. Returns why they can't be used or written, as a sentence;
    /// empty if they are. Settings that can't be used change nothing; what can't be written holds
    /// for this process.
    [[nodiscard]] std::string change(SiteSettings settings);

private:
    KeptWebFile file_;
    SiteSettings settings_{};
};

} // namespace quorvel
