#include "QuorvelApp/widgets/IconImage.h"

#include "LaunchKit/AppCatalog.h"
#include "LaunchKit/Icons/IconImage.h"

namespace quorvel {
namespace {

// Returns the file of a bundle's icon, or the path itself if it is not a bundle.
std::filesystem::path iconFileOf(const std::filesystem::path& path) {
    return path.extension() == ".app"
               ? InstalledApp{.url = path}.iconURL().value_or(std::filesystem::path())
               : path;
}

} // namespace

QImage loadIconImage(const std::filesystem::path& path, int pixels) {
    const std::filesystem::path file = iconFileOf(path);
    if (file.empty()) {
        return {};
    }
    const QImage image = iconImageNear(file, pixels);
    return image.isNull() || image.size() == QSize(pixels, pixels)
               ? image
               : image.convertToFormat(QImage::Format_ARGB32_Premultiplied)
                     .scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

} // namespace quorvel
