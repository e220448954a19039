#include "LaunchKit/Icons/SymbolicPicture.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cmath>

namespace quorvel {
namespace {

constexpr int side = 48;
constexpr int steps = 4; // of opacity

struct Range {
    int darkest = 255;
    int lightest = 0;
};

// What is hardly seen does not count.
Range rangeOf(const QImage& image) {
    constexpr int visible = 128;
    Range range;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            if (const QRgb pixel = image.pixel(x, y); qAlpha(pixel) >= visible) {
                range.darkest = std::min(range.darkest, qGray(pixel));
                range.lightest = std::max(range.lightest, qGray(pixel));
            }
        }
    }
    return range;
}

// Returns how opaque the pixel is to be, from 0 to `steps`. A picture with little contrast becomes
// its outline.
int stepOf(QRgb pixel, const Range& range) {
    constexpr int leastContrast = 48;
    constexpr double leastOpacity = 0.25; // of what is lightest
    const int contrast = range.lightest - range.darkest;
    double opacity = qAlpha(pixel) / 255.0;
    if (contrast >= leastContrast) {
        const double darkness =
            std::clamp(static_cast<double>(range.lightest - qGray(pixel)) / contrast, 0.0, 1.0);
        opacity *= leastOpacity + (1 - leastOpacity) * darkness;
    }
    return static_cast<int>(std::lround(opacity * steps));
}

// Returns the rows of what is at least that opaque as one path, so that it has no seams.
std::string outline(const QImage& image, const Range& range, int step) {
    std::string path;
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            const int start = x;
            while (x < side && stepOf(image.pixel(x, y), range) >= step) {
                ++x;
            }
            if (x > start) {
                path += "M" + std::to_string(start) + " " + std::to_string(y) + "h" +
                        std::to_string(x - start) + "v1H" + std::to_string(start) + "z";
            }
        }
    }
    return path;
}

} // namespace

std::string symbolicPicture(const QImage& picture) {
    // On top of each other, they make a quarter, a half, three quarters, and all.
    constexpr std::array<const char*, steps> opacities{".25", ".33333", ".5", "1"};
    const QImage image = picture.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                             .convertToFormat(QImage::Format_ARGB32);
    const Range range = rangeOf(image);
    const std::string size = std::to_string(side);
    // The class is what KDE recolors; GTK recolors by the file's name. Any other tray shows a color
    // that is seen on dark and light.
    std::string drawing =
        R"(<svg xmlns="http://www.w3.org/2000/svg" width="16" height="16" viewBox="0 0 )" + size +
        " " + size +
        R"("><style id="current-color-scheme" type="text/css">.ColorScheme-Text{color:#909090}</style>)";
    for (int step = 1; step <= steps; ++step) {
        if (const std::string path = outline(image, range, step); !path.empty()) {
            drawing += R"(<path class="ColorScheme-Text" fill="currentColor" fill-opacity=")" +
                       std::string(opacities.at(static_cast<std::size_t>(step - 1))) + R"(" d=")" +
                       path + R"("/>)";
        }
    }
    return drawing + "</svg>\n";
}

} // namespace quorvel
