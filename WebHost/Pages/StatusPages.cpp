#include "WebHost/Pages/StatusPages.h"

#include "WebHost/Links/WebAddress.h"
#include "WebHost/Pages/PageText.h"

namespace quorvel {
namespace {

constexpr std::string_view head =
    R"(<!DOCTYPE html><html><head><meta charset="utf-8"><meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'"><meta name="color-scheme" content="light dark"><style>
body{font:16px system-ui,sans-serif;display:flex;min-height:90vh;align-items:center;justify-content:center}
main{max-width:32em;padding:2em}h1{font-size:1.5em}p{line-height:1.5;overflow-wrap:anywhere;white-space:pre-line}
a{display:inline-block;padding:.5em 1.2em;border-radius:.5em;background:#3367d6;color:#fff;text-decoration:none}
a:focus-visible{outline:3px solid}</style>)";

struct Page {
    std::string heading{};
    std::string text{};
    std::string link{};
    std::string_view address{}; ///< where the link leads; empty for no link
};

std::string htmlOf(const Page& page) {
    std::string html = std::string(head) + "<title>" + htmlText(page.heading) +
                       "</title></head><body><main><h1>" + htmlText(page.heading) + "</h1><p>" +
                       htmlText(page.text) + "</p>";
    if (isWebAddress(page.address)) {
        html += "<p><a href=\"" + htmlText(page.address) + "\">" + htmlText(page.link) + "</a></p>";
    }
    return html + "</main></body></html>";
}

} // namespace

std::string htmlText(std::string_view text) {
    std::string result;
    for (const char byte : pageText(text, text.size())) {
        switch (byte) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += byte;
        }
    }
    return result;
}

std::string noAddressPage(std::string_view cloneName) {
    return htmlOf({"No address",
                   "“" + std::string(cloneName) +
                       "” has no address to open. Create it again with an address.",
                   {},
                   {}});
}

std::string offlinePage(std::string_view address, std::string_view reason) {
    return htmlOf({"Can’t open " + hostOf(address), std::string(reason), "Try Again", address});
}

std::string certificatePage(std::string_view address, std::string_view reason,
                            std::string_view details) {
    return htmlOf({"The connection to " + hostOf(address) + " is not secure",
                   std::string(reason) +
                       " Someone may be intercepting it. The page was not opened." +
                       (details.empty() ? "" : "\n\n" + std::string(details)),
                   "Try Again", address});
}

std::string crashPage(std::string_view address) {
    return htmlOf({"This page keeps crashing", hostOf(address) + " crashed several times.",
                   "Reload", address});
}

} // namespace quorvel
