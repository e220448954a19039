#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

struct xcb_connection_t;

namespace quorvel::benchmarks {

/// An X server's screen.
class Screen {
public:
    /// Throws if the display can't be opened.
    explicit Screen(const std::string& display);

    /// Returns the color there as 0xRRGGBB; std::nullopt if it can't be read.
    [[nodiscard]] std::optional<std::uint32_t> colorAt(std::int16_t x, std::int16_t y) const;

private:
    std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> connection_;
};

} // namespace quorvel::benchmarks
