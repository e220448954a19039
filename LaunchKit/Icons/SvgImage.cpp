#include "LaunchKit/Icons/SvgImage.h"

#include "LaunchKit/Icons/DecodingMemory.h"
#include "LaunchKit/Icons/FontEngine.h"
#include "LaunchKit/Icons/ImageFile.h"
#include "LaunchKit/Icons/SvgCheck.h"

#include <QPainter>
#include <QSvgRenderer>

namespace quorvel {

QImage svgImage(std::string_view bytes, int side) {
    const QByteArray data =
        QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    // A drawing may contain text.
    if (bytes.size() > maximumSvgSize || side < 1 || side > maximumImageSide ||
        !isHarmlessSvg(data) || !ensureFontEngine()) {
        return {};
    }
    constexpr std::size_t bytesPerPixel = 8;
    const auto length = static_cast<std::size_t>(side);
    const DecodingMemory memory(bytesPerPixel * length * length);
    QSvgRenderer renderer(data);
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    if (!renderer.isValid() || renderer.defaultSize().isEmpty() || image.isNull()) {
        return {};
    }
    image.fill(Qt::transparent);
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    return standardPixels(std::move(image));
}

} // namespace quorvel
