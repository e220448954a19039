#include "LaunchKit/IconComposer.h"

#include "Platform/files/FileWriting.h"
#include "Platform/files/PlatformError.h"
#include "LaunchKit/Icons/FontEngine.h"
#include "LaunchKit/Icons/IcnsWriter.h"
#include "LaunchKit/Icons/IconImage.h"
#include "LaunchKit/Icons/LabelPainter.h"
#include "LaunchKit/Icons/LabelText.h"

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
    QColor colour;
    IconLabel::Position position;
};

// The encoded image of that side; empty when it can't be made.
std::string badgedChunk(const Drawing& drawing, int side) {
    // Qt takes the mean of each area, of premultiplied values.
    QImage icon = drawing.source.scaled(side, side, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                      .convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (icon.isNull()) {
        return {};
    }
    drawLabel(icon, drawing.text, drawing.colour, drawing.position);
    return icnsChunk(icon);
}

std::string chunkOrNothing(const Drawing& drawing, int side) {
    try {
        return badgedChunk(drawing, side);
    } catch (const std::bad_alloc&) {
        return {};
    }
}

// The largest costs more than all others together: it goes on beside them.
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

// Premultiplied, as it is scaled; null when there is none.
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
        badgedChunks({source, labelText(label.text), labelColour(label.colorHex), label.position}));
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
