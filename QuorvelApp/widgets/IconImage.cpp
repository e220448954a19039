#include "QuorvelApp/widgets/IconImage.h"

#include "LaunchKit/AppBundle.h"
#include "LaunchKit/Icons/AppIconImage.h"

namespace quorvel {
namespace {

// Returns the file of a bundle's icon, or the path itself if it is not a bundle.
std::filesystem::path iconFileOf(const std::filesystem::path& path) {
    return path.extension() == ".app" ? bundleIconFile(path).value_or(std::filesystem::path())
                                      : path;
}

} // namespace

QImage loadIconImage(const std::filesystem::path& path, int pixels) {
    const std::filesystem::path file = iconFileOf(path);
    if (file.empty()) {
        return {};
    }
    const QImage image = appIconImageNear(file, pixels);
    return image.isNull() || image.size() == QSize(pixels, pixels)
               ? image
               : image.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                     .scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace quorvel
