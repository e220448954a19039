#include "WebHost/Pages/PageTitle.h"

#include "Base/TerminalText.h"
#include "WebHost/Links/WebAddress.h"

namespace quorvel {
namespace {

constexpr std::size_t longestTitle = 120;

std::string isolated(const std::string& text) {
    return "\u2068" + text + "\u2069";
}

std::string followedBy(const std::string& title, std::string_view name) {
    return (title.empty() ? "" : isolated(title) + " — ") + std::string(name);
}

bool beginsWithCount(std::string_view title, const std::string& count) {
    return title.starts_with("(" + count + ")") || title.starts_with("[" + count + "]") ||
           title.starts_with("(" + count + "+)") || title.starts_with("[" + count + "+]");
}

} // namespace

std::string pageTitle(std::string_view raw) {
    std::string title = withoutUnsafe(raw, longestTitle);
    title.erase(0, title.find_first_not_of(' '));
    title.erase(title.find_last_not_of(' ') + 1);
    return title;
}

std::string windowTitle(std::string_view rawTitle, std::string_view cloneName,
                        const std::optional<std::string>& badge) {
    const std::string title = pageTitle(rawTitle);
    const std::string shown = followedBy(title, withoutUnsafe(cloneName));
    return badge && !beginsWithCount(title, *badge) ? "(" + *badge + ") " + shown : shown;
}

std::string popupTitle(std::string_view address, std::string_view rawTitle,
                       std::string_view cloneName) {
    const std::string host = withoutUnsafe(hostOf(address), longestTitle);
    const std::string title = pageTitle(rawTitle);
    return (host.empty() ? "about:blank" : host) + " — " +
           followedBy(title, withoutUnsafe(cloneName));
}

std::string shownHost(std::string_view address, bool isExcepted) {
    const std::string host = withoutUnsafe(hostOf(address));
    const std::string scheme = schemeOf(address);
    if (scheme == "https" && isExcepted) {
        return host + " — not verified";
    }
    // Without encryption, anybody on the way can read and change the page.
    return scheme == "http" && !isThisComputer(host) ? host + " — not encrypted" : host;
}

} // namespace quorvel
