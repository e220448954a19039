// Feeds an address to the check of links, and a text to everything that reads what a clone's home
// contains about links.
#include "LinkDoor/LinkAddress.h"
#include "LinkDoor/LinkSession.h"
#include "Platform/entries/MimeAppsList.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace quorvel;

void require(bool condition) {
    if (!condition) {
        std::abort();
    }
}

// What is accepted can be neither an option nor several lines, and has one reading.
void checkAddress(std::string_view address) {
    std::string scheme;
    try {
        scheme = checkedLinkScheme(address);
    } catch (const LinkAddressError&) {
        return;
    }
    require(hasLinkScheme(address) && address.size() <= longestLinkAddress);
    require(scheme == "http" || scheme == "https" || scheme == "mailto");
    require(std::none_of(address.begin(), address.end(), [](char byte) {
        return static_cast<unsigned char>(byte) < 0x20 || byte == 0x7F;
    }));
    require(address.substr(0, address.find_first_of("?#")).find('\\') == std::string_view::npos);
    if (scheme != "mailto") {
        const std::string_view rest = address.substr(scheme.size());
        require(rest.starts_with("://") && rest.size() > 3);
        require(std::string_view("/?#:@").find(rest[3]) == std::string_view::npos ||
                rest.find('@') != std::string_view::npos);
    }
}

void checkList(std::string_view list) {
    const std::array<std::string, 2> types{"x-scheme-handler/http", "text/html"};
    const std::string preferred = preferringHandler(list, types, "ours.desktop");
    for (const std::string& type : types) {
        require(defaultHandlersIn(preferred, type).front() == "ours.desktop");
    }
    require(preferringHandler(preferred, types, "ours.desktop") == preferred);
    const std::string without = withoutHandler(preferred, "ours.desktop");
    for (const std::string& type : types) {
        std::vector<std::string> before = defaultHandlersIn(list, type);
        std::erase(before, "ours.desktop");
        require(defaultHandlersIn(without, type) == before);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    checkAddress(bytes);
    checkList(bytes);
    if (const auto session = LinkSession::parse(bytes)) {
        require(LinkSession::parse(session->text()) == session);
    }
    return 0;
}
