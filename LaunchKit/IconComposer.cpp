#include "LaunchKit/IconComposer.h"

#include "LaunchKit/Icons/AppIconImage.h"
#include "LaunchKit/Icons/FontEngine.h"
#include "LaunchKit/Icons/IcnsWriter.h"
#include "LaunchKit/Icons/IconImage.h"
#include "LaunchKit/Icons/LabelPainter.h"
#include "LaunchKit/Icons/LabelText.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <future>
#include <new>

namespace quorvel::IconComposer {
namespace {

constexpr std::array sides{1024, 512, 256, 128, 64, 32, 16};
using Chunks = std::array<std::string, sides.size()>;

struct Drawing {
    QImage source;
    LabelText text;
    QColor color;
    IconLabel::Position position;
};

// Returns the encoded image of that side; empty if it can't be made.
std::string badgedChunk(const Drawing& drawing, int side) {
    // Qt averages each area, so the values must be premultiplied.
    QImage icon = drawing.source.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                      .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (icon.isNull()) {
        return {};
    }
    drawLabel(icon, drawing.text, drawing.color, drawing.position);
    return icnsChunk(icon);
}

std::string chunkOrNothing(const Drawing& drawing, int side) {
    try {
        return badgedChunk(drawing, side);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

// The largest takes longer than all others together, so it is drawn concurrently with them.
Chunks badgedChunks(const Drawing& drawing, std::size_t first) {
    Chunks chunks;
    const auto make = [&](std::size_t index) {
        chunks[index] = chunkOrNothing(drawing, sides[index]);
    };
    const std::future<void> largest =
        std::async(std::launch::async | std::launch::deferred, make, first);
    for (std::size_t index = first + 1; index < sides.size(); ++index) {
        make(index);
    }
    largest.wait();
    return chunks;
}

// Returns the image premultiplied, as scaling needs it. Throws if there is none.
template<typename Read>
QImage sourceImage(const std::filesystem::path& source, Read read) {
    QImage image;
    try {
        image = read(source).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    } catch (const std::bad_alloc&) {
        image = QImage();
    }
    if (image.isNull()) {
        throw ComposeError::noSourceImage(source);
    }
    return image;
}

std::string badgedIcon(const QImage& source, const IconLabel& label, std::size_t first) {
    if (!ensureFontEngine()) {
        throw ComposeError::destinationFailed();
    }
    try {
        return icnsFile(badgedChunks(
            {source, labelText(label.text), labelColor(label.colorHex), label.position}, first));
    } catch (const std::bad_alloc&) {
        throw ComposeError::destinationFailed();
    }
}

// Returns the index of the smallest side that loses nothing of an image of this width.
std::size_t largestFor(int width) {
    std::size_t index = 0;
    while (index + 1 < sides.size() && sides[index + 1] >= width) {
        ++index;
    }
    return index;
}

// As a square, so that scaling doesn't distort it.
QImage squared(const QImage& image) {
    const int side = std::max(image.width(), image.height());
    if (image.size() == QSize(side, side)) {
        return image;
    }
    QImage square(side, side, QImage::Format_ARGB32_Premultiplied);
    square.fill(Qt::transparent);
    QPainter(&square).drawImage((side - image.width()) / 2, (side - image.height()) / 2, image);
    return square;
}

} // namespace

ComposeError ComposeError::noSourceImage(const std::filesystem::path& source) {
    return {Case::noSourceImage, "No readable image in " + source.string(), source};
}

ComposeError ComposeError::destinationFailed() {
    return {Case::destinationFailed, "Could not write the composited .icns"};
}

void compose(const std::filesystem::path& source, const IconLabel& label,
             const std::filesystem::path& destination) {
    const std::string icon = composed(source, label);
    try {
        writeFile(destination, icon);
    } catch (const PlatformError&) {
        throw ComposeError::destinationFailed();
    }
}

std::string composed(const std::filesystem::path& source, const IconLabel& label) {
    return badgedIcon(sourceImage(source, widestIconImage), label, 0);
}

std::string converted(const std::filesystem::path& source, const std::optional<IconLabel>& label) {
    const QImage image = squared(sourceImage(source, widestAppIconImage));
    return badgedIcon(image, label.value_or(IconLabel{}), largestFor(image.width()));
}

} // namespace quorvel::IconComposer
