// Draws a contact sheet of badged icons, for people to look at: badge_sheet FILE
// Every icon on it went through the composer and back through the reader.

#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Icons/FontEngine.h"
#include "LaunchKit/Icons/IcnsFile.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <array>
#include <iostream>
#include <vector>

namespace quorvel::testing {
namespace {

constexpr int margin = 40;
constexpr int gap = 20;
constexpr int rowHeight = 256 + 40;
constexpr int columnWidth = (1024 + gap + 512 + 2 * gap) / 3;

struct Badge {
    IconArtist artist;
    IconLabel label;
};

const std::array<Badge, 9> gallery{{
    {chatIcon, {"Work", "#FFFFFF", IconLabel::Position::bottom}},
    {chatIcon, {"Private", "#FFD60A", IconLabel::Position::center}},
    {chatIcon, {"A long account name", "#FFFFFF", IconLabel::Position::top}},
    {paperIcon, {"2", "#FF453A", IconLabel::Position::bottom}},
    {paperIcon, {"Δοκιμή", "#FFFFFF", IconLabel::Position::center}},
    {paperIcon, {"المنزل", "#30D158", IconLabel::Position::top}},
    {planetIcon, {"工作", "#FFFFFF", IconLabel::Position::bottom}},
    {planetIcon, {"🚀 Go", "#64D2FF", IconLabel::Position::center}},
    {planetIcon, {"Straße", "#FF9F0A", IconLabel::Position::top}},
}};

// The sizes of one badged icon, largest first.
std::vector<QImage> composed(const Badge& badge) {
    const TemporaryFolder folder;
    badge.artist(1024).save(QString::fromStdString((folder / "source.png").string()));
    IconComposer::compose(folder / "source.png", badge.label, folder / "badged.icns");
    const auto file = IcnsFile::read(folder / "badged.icns");
    std::vector<QImage> images;
    for (std::size_t index = 0; file && index < file->entries().size(); ++index) {
        images.push_back(file->decode(index));
    }
    return images;
}

// The widest image on the left, two columns beside it, the small ones in a row below these.
void drawSizes(QPainter& painter, QPoint at, const std::vector<QImage>& images) {
    const auto place = [&](std::size_t index, int x, int y) {
        painter.drawImage(at + QPoint(x, y), images.at(index));
    };
    place(0, 0, 0);
    place(1, 1024 + gap, 0);
    const int below = 512 + gap;
    place(2, 1024 + gap, below);
    const int beside = 1024 + gap + 256 + gap;
    place(3, beside, below);
    place(4, beside + 128 + gap, below);
    place(5, beside + 128 + gap, below + 64 + gap);
    place(6, beside + 128 + gap + 32 + gap, below + 64 + gap);
}

// One badge at 256 pixels, with its smaller forms in a column beside it.
void drawBadge(QPainter& painter, QPoint at, const std::vector<QImage>& images) {
    painter.drawImage(at, images.at(2));
    QPoint beside = at + QPoint(256 + gap, 0);
    for (const std::size_t index : {3U, 4U, 5U, 6U}) {
        painter.drawImage(beside, images.at(index));
        beside += QPoint(0, images.at(index).height() + gap / 4);
    }
}

void drawPanel(QPainter& painter, QPoint at, const std::vector<std::vector<QImage>>& badges,
               std::size_t shownLarge) {
    for (std::size_t index = 0; index < badges.size(); ++index) {
        drawBadge(painter,
                  at + QPoint(static_cast<int>(index / 3) * columnWidth,
                              static_cast<int>(index % 3) * rowHeight),
                  badges[index]);
    }
    drawSizes(painter, at + QPoint(0, 3 * rowHeight), badges.at(shownLarge));
}

QImage sheet() {
    std::vector<std::vector<QImage>> badges;
    std::transform(gallery.begin(), gallery.end(), std::back_inserter(badges), composed);
    const int width = 1024 + gap + 512 + 2 * margin;
    const int height = 3 * rowHeight + 1024 + 2 * margin;
    QImage image(2 * width, height, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.fillRect(0, 0, width, height, QColor(0xF5, 0xF5, 0xF7));
    painter.fillRect(width, 0, width, height, QColor(0x1E, 0x1E, 0x20));
    drawPanel(painter, {margin, margin}, badges, 0);
    drawPanel(painter, {width + margin, margin}, badges, badges.size() - 1);
    return image;
}

} // namespace
} // namespace quorvel::testing

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: badge_sheet FILE\n";
        return 2;
    }
    quorvel::ensureFontEngine();
    if (!quorvel::testing::sheet().save(QString::fromLocal8Bit(argv[1]), "png")) {
        std::cerr << "could not write " << argv[1] << "\n";
        return 1;
    }
    return 0;
}
