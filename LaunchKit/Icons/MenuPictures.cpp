#include "LaunchKit/Icons/MenuPictures.h"

#include "LaunchKit/Icons/IconImage.h"
#include "LaunchKit/Icons/SymbolicPicture.h"

#include <QBuffer>
#include <QPainter>

#include <new>

namespace quorvel {
namespace {

QImage fitted(const QImage& image, int side) {
    QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    const QImage scaled = image.scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QPainter painter(&square);
    painter.drawImage((side - scaled.width()) / 2, (side - scaled.height()) / 2, scaled);
    return square;
}

std::string pngBytes(const QImage& image) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

std::vector<MenuPicture> picturesIn(const std::filesystem::path& icon, bool isSymbolic) {
    // Averaging colors needs them premultiplied.
    const QImage image = iconImageNear(icon, menuPictureSides.back())
                             .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) {
        return {};
    }
    std::vector<MenuPicture> pictures;
    pictures.reserve(menuPictureSides.size() + 1);
    for (const int side : menuPictureSides) {
        pictures.push_back({side, pngBytes(fitted(image, side))});
    }
    if (isSymbolic) {
        pictures.push_back(
            {MenuPicture::symbolic, symbolicPicture(fitted(image, menuPictureSides.front()))});
    }
    return pictures;
}

} // namespace

std::vector<MenuPicture> menuPictures(const std::filesystem::path& icon, bool isSymbolic) {
    try {
        return picturesIn(icon, isSymbolic);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

} // namespace quorvel
