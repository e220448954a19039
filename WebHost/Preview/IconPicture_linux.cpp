#include "WebHost/Preview/IconPicture_linux.h"

#include "Platform/statusitem/GObjects_linux.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <cmath>

namespace quorvel {
namespace {

constexpr int largestOriginal = 4096; // a larger one is no icon

struct Size {
    int limit = 0;
    bool isTooLarge = false;
};

void limitSize(GdkPixbufLoader* loader, int width, int height, gpointer data) {
    auto& size = *static_cast<Size*>(data);
    if (width < 1 || height < 1 || width > largestOriginal || height > largestOriginal) {
        size.isTooLarge = true;
        return;
    }
    const double factor = std::min(1.0, static_cast<double>(size.limit) / std::max(width, height));
    const auto scaled = [&](int side) {
        return std::max(1, static_cast<int>(std::lround(side * factor)));
    };
    gdk_pixbuf_loader_set_size(loader, scaled(width), scaled(height));
}

// In small parts, so that decoding stops where the size proves to be too large.
bool feed(GdkPixbufLoader* loader, std::string_view picture, const Size& size) {
    constexpr std::size_t part = 512;
    bool isRead = true;
    for (; isRead && !size.isTooLarge && !picture.empty();
         picture.remove_prefix(std::min(part, picture.size()))) {
        isRead = gdk_pixbuf_loader_write(loader, reinterpret_cast<const guchar*>(picture.data()),
                                         std::min(part, picture.size()), nullptr) == TRUE;
    }
    // It must be closed in any case.
    return gdk_pixbuf_loader_close(loader, nullptr) == TRUE && isRead && !size.isTooLarge;
}

} // namespace

std::optional<std::string> pngOf(std::string_view picture, int largestSide) {
    const ObjectRef<GdkPixbufLoader> loader(gdk_pixbuf_loader_new());
    Size size{largestSide};
    g_signal_connect(loader.get(), "size-prepared", G_CALLBACK(limitSize), &size);
    GdkPixbuf* const pixels =
        feed(loader.get(), picture, size) ? gdk_pixbuf_loader_get_pixbuf(loader.get()) : nullptr;
    if (pixels == nullptr || gdk_pixbuf_get_width(pixels) > largestSide ||
        gdk_pixbuf_get_height(pixels) > largestSide) {
        return std::nullopt;
    }
    char* bytes = nullptr;
    gsize length = 0;
    if (gdk_pixbuf_save_to_buffer(pixels, &bytes, &length, "png", nullptr, nullptr) == FALSE) {
        return std::nullopt;
    }
    std::string png(bytes, length);
    g_free(bytes);
    return png;
}

} // namespace quorvel
