#include "WebHost/Links/LinkRouting.h"

#include "WebHost/Links/WebAddress.h"

#include <algorithm>
#include <array>

namespace quorvel {
namespace {

// What the engine itself shows in a window or a frame.
constexpr std::array<std::string_view, 2> innerSchemes{"about", "blob"};

// Would make another program open a file or run something.
constexpr std::array<std::string_view, 12> refusedSchemes{
    "data",    "file",     "filesystem", "ftp",      "javascript",  "jar",
    "quorvel", "resource", "smb",        "vbscript", "view-source", "webkit"};

template<typename Schemes>
bool isAmong(const Schemes& schemes, const std::string& scheme) {
    return std::find(schemes.begin(), schemes.end(), scheme) != schemes.end();
}

std::string siteOfAddress(std::string_view address, const SiteOf& siteOf) {
    const std::string host = hostOf(address);
    std::string site = siteOf(host);
    return site.empty() ? host : site;
}

bool leavesTheSite(const LinkRequest& request, const SiteOf& siteOf) {
    return !request.home.empty() && !isSameSite(request.address, request.home, siteOf) &&
           !isSameSite(request.address, request.page, siteOf);
}

LinkDecision routeInFrame(std::string_view address) {
    const std::string scheme = schemeOf(address);
    return isWebAddress(address) || isAmong(innerSchemes, scheme) || scheme == "data"
               ? LinkDecision::here
               : LinkDecision::refuse;
}

LinkDecision routeToSite(const LinkRequest& request, const SiteOf& siteOf) {
    const bool isFollowed = request.isLinkClick && request.isGesture && !request.isRedirect;
    const bool mayLeave = isFollowed && (request.isNewWindow || !request.isPopup);
    const bool leaves = request.rule ? *request.rule == LinkPlace::outside
                                     : !request.staysInside && leavesTheSite(request, siteOf);
    return mayLeave && leaves ? LinkDecision::outside : LinkDecision::here;
}

LinkDecision routeToProgram(const LinkRequest& request) {
    const std::string scheme = schemeOf(request.address);
    if (isAmong(innerSchemes, scheme)) {
        return LinkDecision::here;
    }
    const bool isOtherPrograms = !scheme.empty() && !isAmong(refusedSchemes, scheme);
    return isOtherPrograms && request.isGesture ? LinkDecision::ask : LinkDecision::refuse;
}

} // namespace

bool isSameSite(std::string_view a, std::string_view b, const SiteOf& siteOf) {
    return isWebAddress(a) && isWebAddress(b) && !hostOf(a).empty() &&
           siteOfAddress(a, siteOf) == siteOfAddress(b, siteOf);
}

LinkDecision routeOf(const LinkRequest& request, const SiteOf& siteOf) {
    if (!request.isMainFrame && !request.isNewWindow) {
        return routeInFrame(request.address);
    }
    return isWebAddress(request.address) ? routeToSite(request, siteOf) : routeToProgram(request);
}

bool follow(LinkDecision decision, const std::function<void()>& openOutside,
            const std::function<void()>& ask) {
    switch (decision) {
    case LinkDecision::here:
        return true;
    case LinkDecision::outside:
        openOutside();
        break;
    case LinkDecision::ask:
        ask();
        break;
    case LinkDecision::refuse:
        break;
    }
    return false;
}

} // namespace quorvel
