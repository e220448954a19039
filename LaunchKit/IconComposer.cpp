#include "LaunchKit/IconComposer.h"

#include "LaunchKit/Icons/FontEngine.h"
#include "LaunchKit/Icons/IcnsWriter.h"
#include "LaunchKit/Icons/IconImage.h"
#include "LaunchKit/Icons/LabelPainter.h"
#include "LaunchKit/Icons/LabelText.h"
#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"

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
Chunks badgedChunks(const Drawing& drawing) {
    Chunks chunks;
    const auto make = [&](std::size_t index) {
        chunks[index] = chunkOrNothing(drawing, sides[index]);
    };
    const std::future<void> largest =
        std::async(std::launch::async | std::launch::deferred, make, 0U);
    for (std::size_t index = 1; index < sides.size(); ++index) {
        make(index);
    }
    largest.wait();
    return chunks;
}

// Returns the image premultiplied, as scaling needs it; null if there is none.
QImage sourceImage(const std::filesystem::path& source) {
    try {
        return widestIconImage(source).convertToFormat(QImage::Format_ARGB32_Premultiplied);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

std::string badgedIcon(const QImage& source, const IconLabel& label) {
    if (!ensureFontEngine()) {
        throw ComposeError::destinationFailed();
    }
    return icnsFile(
        badgedChunks({source, labelText(label.text), labelColor(label.colorHex), label.position}));
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
    const QImage image = sourceImage(source);
    if (image.isNull()) {
        throw ComposeError::noSourceImage(source);
    }
    try {
        writeFile(destination, badgedIcon(image, label));
    } catch (const PlatformError&) {
        throw ComposeError::destinationFailed();
    } catch (const std::bad_alloc&) {
        throw ComposeError::destinationFailed();
    }
}

} // namespace quorvel::IconComposer
