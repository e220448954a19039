#include "WebHost/Settings/AppliedSettings_linux.h"

#include <algorithm>
#include <string>
#include <vector>

namespace quorvel {
namespace {

// The user's languages, as "en_US"; without those that only name an encoding.
std::vector<std::string> userLanguages() {
    std::vector<std::string> languages;
    for (const char* const* name = g_get_language_names(); *name != nullptr; ++name) {
        const std::string language = *name;
        if (language != "C" && language.find_first_of(".@") == std::string::npos) {
            languages.push_back(language);
        }
    }
    if (languages.empty()) {
        languages.emplace_back("en_US");
    }
    return languages;
}

// Valid as long as the texts are.
std::vector<const char*> listOf(const std::vector<std::string>& texts) {
    std::vector<const char*> list;
    for (const std::string& text : texts) {
        list.push_back(text.c_str());
    }
    list.push_back(nullptr);
    return list;
}

void applyProxy(WebKitNetworkSession* session, const SiteSettings& settings) {
    switch (settings.proxy) {
    case ProxyUse::system:
        webkit_network_session_set_proxy_settings(session, WEBKIT_NETWORK_PROXY_MODE_DEFAULT,
                                                  nullptr);
        break;
    case ProxyUse::none:
        webkit_network_session_set_proxy_settings(session, WEBKIT_NETWORK_PROXY_MODE_NO_PROXY,
                                                  nullptr);
        break;
    case ProxyUse::address: {
        WebKitNetworkProxySettings* const proxy =
            webkit_network_proxy_settings_new(settings.proxyAddress.c_str(), nullptr);
        webkit_network_session_set_proxy_settings(session, WEBKIT_NETWORK_PROXY_MODE_CUSTOM, proxy);
        webkit_network_proxy_settings_free(proxy);
        break;
    }
    }
}

} // namespace

void applySiteSettings(const SettingsTarget& target, const SiteSettings& settings) {
    webkit_settings_set_user_agent(
        target.settings, settings.userAgent.empty() ? nullptr : settings.userAgent.c_str());
    // Naming the languages loads their dictionaries.
    if (settings.checksSpelling) {
        const std::vector<std::string> languages =
            settings.spellingLanguages.empty() ? userLanguages() : settings.spellingLanguages;
        webkit_web_context_set_spell_checking_languages(target.context, listOf(languages).data());
    }
    webkit_web_context_set_spell_checking_enabled(target.context,
                                                  settings.checksSpelling ? TRUE : FALSE);
    applyProxy(target.session, settings);
}

void restrictPages(WebKitSettings* settings) {
    webkit_settings_set_allow_file_access_from_file_urls(settings, FALSE);
    webkit_settings_set_allow_universal_access_from_file_urls(settings, FALSE);
    webkit_settings_set_allow_top_navigation_to_data_urls(settings, FALSE);
    webkit_settings_set_disable_web_security(settings, FALSE);
    webkit_settings_set_enable_developer_extras(settings, FALSE);
    webkit_settings_set_javascript_can_open_windows_automatically(settings, FALSE);
}

void setPageLanguages(WebKitWebContext* context) {
    std::vector<std::string> languages = userLanguages();
    for (std::string& language : languages) {
        std::replace(language.begin(), language.end(), '_', '-');
    }
    webkit_web_context_set_preferred_languages(context, listOf(languages).data());
}

} // namespace quorvel
