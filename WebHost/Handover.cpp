#include "WebHost/Handover.h"

#include "Platform/sockets/LocalSocket.h"
#include "WebHost/Links/WebAddress.h"

namespace quorvel {
namespace {

constexpr const char* socketName = ".quorvel-web-socket";

} // namespace

std::string WebHandover::text() const {
    return address + "\n" + token + "\n";
}

std::optional<WebHandover> WebHandover::parse(std::string_view text) {
    const std::size_t first = text.find('\n');
    if (first == std::string_view::npos || text.size() > longestHandover) {
        return std::nullopt;
    }
    const std::string_view rest = text.substr(first + 1);
    if (rest.empty() || rest.find('\n') != rest.size() - 1) {
        return std::nullopt;
    }
    WebHandover handover{std::string(text.substr(0, first)),
                         std::string(rest.substr(0, rest.size() - 1))};
    const bool isGood =
        handover.address.empty() ||
        startAddress(handover.address) == StartAddress{StartAddress::Case::page, handover.address};
    return isGood ? std::optional(std::move(handover)) : std::nullopt;
}

FileHandle listenForHandovers(const std::string& home) {
    return LocalSocket::listenIn(home, socketName);
}

bool sendHandover(const std::string& home, const WebHandover& handover,
                  std::chrono::milliseconds patience) {
    return LocalSocket::ask(home, socketName, handover.text(), patience) == "1";
}

} // namespace quorvel
