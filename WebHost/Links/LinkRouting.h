#pragma once

#include "WebHost/Settings/SiteSettings.h"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

/// Where links that are followed in a web clone lead.
namespace quorvel {

enum class LinkDecision {
    here,    ///< the window, or the frame, that asked for it
    outside, ///< the user's default browser
    ask,     ///< another program, if the user agrees
    refuse,
};

/// One navigation that a page asks for.
struct LinkRequest {
    std::string_view address{}; ///< where it leads
    std::string_view page{};    ///< the address of the page that asks
    std::string_view home{};    ///< the clone's own address; empty if it has none
    bool isGesture = false;     ///< the user clicked or pressed a key
    bool isLinkClick = false;   ///< it follows a link, not a form or a script
    bool isRedirect = false;    ///< a server redirects what was asked for before
    bool isMainFrame = true;
    bool isNewWindow = false;        ///< a window is asked for
    bool isPopup = false;            ///< it is asked for in a pop-up window
    bool staysInside = false;        ///< links to other sites open in the clone
    std::optional<LinkPlace> rule{}; ///< the user's, for the host of `address`
};

/// Returns the part of a host that all hosts of its site share: "example.co.uk" for
/// "mail.example.co.uk". It comes from the system's list of public suffixes, or is guessed.
using SiteOf = std::function<std::string(const std::string& host)>;

/// Returns whether both are web addresses of one site. If the site of an address is unknown, its
/// host counts.
[[nodiscard]] bool isSameSite(std::string_view a, std::string_view b, const SiteOf& siteOf);

/// Decides where a link leads. A click on a link that leaves the site goes outside, unless the user
/// has a rule for its host. Redirects, forms and scripts stay, since signing in is made of them, as
/// does what happens in pop-ups. Other schemes need a gesture, and are not for what is known to be
/// a frame within a page.
[[nodiscard]] LinkDecision routeOf(const LinkRequest& request, const SiteOf& siteOf);

/// Opens the link outside, or asks about it, if that was decided. Returns whether it stays here.
[[nodiscard]] bool follow(LinkDecision decision, const std::function<void()>& openOutside,
                          const std::function<void()>& ask);

} // namespace quorvel
