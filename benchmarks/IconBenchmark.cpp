// Icon work against its floors.
#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Icons/FontEngine.h"
#include "LaunchKit/Icons/IcnsFile.h"
#include "LaunchKit/Icons/IcnsWriter.h"
#include "LaunchKit/Icons/IconImage.h"
#include "benchmarks/Benchmarks.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <QImage>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace quorvel::benchmarks {
namespace {

using namespace testing;

namespace fs = std::filesystem;

const IconLabel label{"Work", "#FFFFFF", IconLabel::Position::bottom};

// A figure for failed work would be meaningless.
void require(bool done) {
    if (!done) {
        throw std::runtime_error("an icon could not be made or read");
    }
}

constexpr std::array<const char*, 3> artworkNames{"chat", "paper", "planet"};

// A modern icon: the artwork in all sizes, as the writer lays it out.
void writeModernIcon(const fs::path& file, IconArtist artist) {
    std::vector<std::string> chunks;
    for (const int side : {1024, 512, 256, 128, 64, 32, 16}) {
        chunks.push_back(icnsChunk(artist(side)));
    }
    write(file, icnsFile(chunks));
}

// The images that a composed icon contains as PNG files.
std::vector<QImage> pngImagesOf(const fs::path& composed) {
    const auto file = IcnsFile::read(composed);
    std::vector<QImage> images;
    for (std::size_t index = 0; file && index < file->entries().size(); ++index) {
        if (file->entries()[index].encoding == IcnsEncoding::png) {
            images.push_back(file->decode(index));
        }
    }
    return images;
}

Row composeAgainstEncoding(const fs::path& folder, std::size_t artwork) {
    const fs::path source = folder / "source.icns";
    const fs::path composed = folder / "composed.icns";
    writeModernIcon(source, iconArtists.at(artwork));
    IconComposer::compose(source, label, composed);
    const std::vector<QImage> images = pngImagesOf(composed);
    return compareTimes(
        std::string("label the ") + artworkNames.at(artwork) + " icon, against encoding its images",
        [&] { IconComposer::compose(source, label, composed); },
        [&] {
            for (const QImage& image : images) {
                require(!pngBytes(image).empty());
            }
        },
        1.5, 15);
}

// A script as written by hand. png2icns rejects 64 pixels, so the script makes one size less.
constexpr const char* handScript = R"(set -e
cd "$0"
for side in 1024 512 256 128 32 16; do
  convert source.png -resize ${side}x${side} \
    \( -size ${side}x${side} xc:none -font Nimbus-Sans-Bold -pointsize $((side * 24 / 100)) \
       -gravity south -stroke 'rgba(0,0,0,0.9)' -strokewidth $((side * 43 / 1000)) \
       -annotate +0+$((side * 8 / 100)) WORK \
       \( +clone -background black -shadow 50x$((side * 6 / 1000))+0+$((side * 4 / 1000)) \) \
       +swap -background none -layers merge +repage -gravity center -crop ${side}x${side}+0+0 \) \
    -composite -gravity south -stroke none -fill white -font Nimbus-Sans-Bold \
    -pointsize $((side * 24 / 100)) -annotate +0+$((side * 8 / 100)) WORK out$side.png
done
png2icns composed.icns out1024.png out512.png out256.png out128.png out32.png out16.png >/dev/null
)";

std::optional<Row> composeAgainstScript(const fs::path& folder) {
    chatIcon(1024).save(QString::fromStdString((folder / "source.png").string()));
    write(folder / "script", handScript);
    const std::string command =
        "sh -c \"$(cat '" + (folder / "script").string() + "')\" '" + folder.string() + "'";
    if (std::system(command.c_str()) != 0) {
        std::fputs("no row for the script by hand: it needs convert and png2icns\n", stderr);
        return std::nullopt;
    }
    constexpr double goal = 5;
    Row row = compareTimes(
        "label an icon, against ImageMagick and png2icns",
        [&] { IconComposer::compose(folder / "source.png", label, folder / "ours.icns"); },
        [&] { require(std::system(command.c_str()) == 0); }, 1 / goal, 1);
    row.result = decimals(row.floor / row.figure, "x faster");
    row.goal = ">= " + decimals(goal, "x");
    return row;
}

Row listImageAgainstLargest(const fs::path& folder, std::size_t artwork) {
    const fs::path source = folder / "source.icns";
    writeModernIcon(source, iconArtists.at(artwork));
    return compareTimes(
        std::string("read the ") + artworkNames.at(artwork) + " icon near 64, against its largest",
        [&] { require(!iconImageNear(source, 64).isNull()); },
        [&] { require(!widestIconImage(source).isNull()); }, 0.1, 25);
}

} // namespace

std::vector<Row> iconRows(const fs::path& folder) {
    ensureFontEngine();
    std::vector<Row> rows;
    rows.reserve(iconArtists.size() + 1);
    for (std::size_t artwork = 0; artwork < iconArtists.size(); ++artwork) {
        rows.push_back(composeAgainstEncoding(folder, artwork));
    }
    if (std::optional<Row> row = composeAgainstScript(folder)) {
        rows.push_back(std::move(*row));
    }
    for (std::size_t artwork = 0; artwork < iconArtists.size(); ++artwork) {
        rows.push_back(listImageAgainstLargest(folder, artwork));
    }
    return rows;
}

} // namespace quorvel::benchmarks
