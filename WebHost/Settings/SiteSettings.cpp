#include "WebHost/Settings/SiteSettings.h"

#include "Base/AsciiCase.h"
#include "WebHost/Links/WebAddress.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace quorvel {
namespace {

constexpr std::size_t longestUserAgent = 512;
constexpr std::size_t longestProxy = 300;
constexpr std::size_t longestHost = 253;
constexpr std::size_t mostRules = 500;

bool isLetterOrDigit(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9');
}

bool isHost(std::string_view text) {
    return !text.empty() && text.size() <= longestHost && text.front() != '.' &&
           std::all_of(text.begin(), text.end(), [](char byte) {
               return isLetterOrDigit(byte) || byte == '-' || byte == '.' || byte == '_' ||
                      byte == ':';
           });
}

// As pages' hosts are compared. The file may have been written by hand.
std::map<std::string, std::string> inSmallLetters(const std::map<std::string, std::string>& links) {
    std::map<std::string, std::string> result;
    for (const auto& [host, place] : links) {
        result.emplace(asciiLower(host), place);
    }
    return result;
}

bool isLanguage(std::string_view text) {
    constexpr std::size_t longest = 20;
    return text.size() >= 2 && text.size() <= longest &&
           std::all_of(text.begin(), text.end(),
                       [](char byte) { return isLetterOrDigit(byte) || byte == '_'; });
}

// It becomes a line of each request.
bool isUserAgent(std::string_view text) {
    return text.size() <= longestUserAgent && !text.starts_with(' ') && !text.ends_with(' ') &&
           std::all_of(text.begin(), text.end(),
                       [](char byte) { return byte >= ' ' && byte <= '~'; });
}

std::string proxyProblem(std::string_view address) {
    constexpr std::array<std::string_view, 5> schemes{"http", "https", "socks", "socks4", "socks5"};
    const std::string example = "The proxy’s address must be like “http://host:8080”.";
    const std::string scheme = schemeOf(address);
    const std::string host = hostOf(address);
    if (address.size() > longestProxy ||
        std::find(schemes.begin(), schemes.end(), scheme) == schemes.end() || !isHost(host)) {
        return example;
    }
    if (address.find('@') != std::string_view::npos) {
        return "The proxy’s address must not contain a password; you are asked for it.";
    }
    const std::string_view rest = address.substr(scheme.size() + 3);
    const std::size_t colon = rest.rfind(':');
    if (colon == std::string_view::npos || rest.find_first_of("/?#\\") != std::string_view::npos) {
        return example;
    }
    const std::string_view port = rest.substr(colon + 1);
    unsigned number = 0;
    const auto result = std::from_chars(port.data(), port.data() + port.size(), number);
    constexpr unsigned largestPort = 65'535;
    const bool isPort = result.ec == std::errc{} && result.ptr == port.data() + port.size() &&
                        number > 0 && number <= largestPort;
    return isPort ? std::string() : example;
}

} // namespace

template<>
struct RecordTable<SiteSettings> {
    static constexpr std::string_view name = "settings";
    static constexpr auto fields = sortedByKey(std::array{
        Row<SiteSettings>::of<&SiteSettings::colors>("colors"),
        Row<SiteSettings>::of<&SiteSettings::checksSpelling>("checksSpelling"),
        Row<SiteSettings>::of<&SiteSettings::spellingLanguages>("spellingLanguages"),
        Row<SiteSettings>::of<&SiteSettings::userAgent>("userAgent"),
        Row<SiteSettings>::of<&SiteSettings::proxy>("proxy"),
        Row<SiteSettings>::of<&SiteSettings::proxyAddress>("proxyAddress"),
        Row<SiteSettings>::of<&SiteSettings::links>("links"),
    });
};

std::string problemIn(const SiteSettings& settings) {
    if (!isUserAgent(settings.userAgent)) {
        return "The user agent must be plain text of at most 512 characters.";
    }
    for (const std::string& language : settings.spellingLanguages) {
        if (!isLanguage(language)) {
            return "Languages must be like “en_US”.";
        }
    }
    if (settings.proxy == ProxyUse::address || !settings.proxyAddress.empty()) {
        if (std::string problem = proxyProblem(settings.proxyAddress); !problem.empty()) {
            return problem;
        }
    }
    if (settings.links.size() > mostRules) {
        return "There are too many rules for links.";
    }
    for (const auto& [host, place] : settings.links) {
        if (!isHost(host) || !caseNamed<LinkPlace>(place)) {
            return "A rule for links must name a host such as “example.com”.";
        }
    }
    return {};
}

std::optional<ProxyServer> proxyServer(const SiteSettings& settings) {
    const std::string& address = settings.proxyAddress;
    if (settings.proxy != ProxyUse::address || !proxyProblem(address).empty()) {
        return std::nullopt;
    }
    return ProxyServer{schemeOf(address), hostOf(address), address.substr(address.rfind(':') + 1)};
}

std::vector<std::string> languagesIn(std::string_view list) {
    std::vector<std::string> languages;
    std::string word;
    for (const char byte : std::string(list) + " ") {
        if (byte != ' ' && byte != ',' && byte != ';') {
            word += byte == '-' ? '_' : byte;
        } else if (!word.empty()) {
            languages.push_back(std::exchange(word, {}));
        }
    }
    return languages;
}

std::string ruleHost(std::string_view typed) {
    const StartAddress address = startAddress(std::string(typed));
    const std::string host =
        address.kind == StartAddress::Case::page ? hostOf(address.text) : std::string();
    return isHost(host) ? host : std::string();
}

std::optional<LinkPlace> ruleFor(const SiteSettings& settings, std::string_view host) {
    while (!host.empty()) {
        if (const auto found = settings.links.find(std::string(host));
            found != settings.links.end()) {
            return caseNamed<LinkPlace>(found->second);
        }
        const std::size_t dot = host.find('.');
        host.remove_prefix(dot == std::string_view::npos ? host.size() : dot + 1);
    }
    return std::nullopt;
}

SiteSettingsStore::SiteSettingsStore(std::filesystem::path home, std::string path)
    : file_(std::move(home), std::move(path)) {
    file_.read(settings_);
    settings_.links = inSmallLetters(settings_.links);
    if (std::string problem = problemIn(settings_); !problem.empty()) {
        file_.refuse(std::move(problem));
        settings_ = SiteSettings();
    }
}

std::string SiteSettingsStore::change(SiteSettings settings) {
    if (std::string problem = problemIn(settings); !problem.empty()) {
        return problem;
    }
    settings_ = std::move(settings);
    return file_.write(settings_) ? std::string() : "The settings can’t be written.";
}

} // namespace quorvel
