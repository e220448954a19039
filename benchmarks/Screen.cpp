#include "benchmarks/Screen.h"

#include <xcb/xcb.h>

#include <cstdlib>
#include <stdexcept>

namespace quorvel::benchmarks {

Screen::Screen(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr), xcb_disconnect) {
    if (xcb_connection_has_error(connection_.get()) != 0) {
        throw std::runtime_error("can't open display " + display);
    }
}

std::optional<std::uint32_t> Screen::colorAt(std::int16_t x, std::int16_t y) const {
    constexpr std::uint32_t allPlanes = ~std::uint32_t{0};
    constexpr int bytes = 4;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data->root;
    const std::unique_ptr<xcb_get_image_reply_t, void (*)(void*)> image(
        xcb_get_image_reply(connection_.get(),
                            xcb_get_image(connection_.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, root, x, y,
                                          1, 1, allPlanes),
                            nullptr),
        std::free);
    if (!image || xcb_get_image_data_length(image.get()) < bytes) {
        return std::nullopt;
    }
    const std::uint8_t* const data = xcb_get_image_data(image.get());
    return std::uint32_t{data[2]} << 16U | std::uint32_t{data[1]} << 8U | data[0];
}

} // namespace quorvel::benchmarks
