#pragma once

#include <string>

namespace quorvel {

/// The address of the page that a window shows. The engine also reports the address of a page that
/// it has only been asked for, and the page that asked must not speak in that one's name.
class ShownAddress {
public:
    /// A page has replaced the one before.
    void committed(std::string address) { shown_ = std::move(address); }
    /// The engine reports an address. Only one of the same origin may be the page's own doing.
    void reported(const std::string& address);

    /// Returns the address; empty before the first page.
    [[nodiscard]] const std::string& text() const { return shown_; }

private:
    std::string shown_{};
};

} // namespace quorvel
