// Icon work against its floors, both sides measured in turns in the same run. Every benchmark
// prints the medians in milliseconds and "ratio", our time divided by the floor's.

#include "LaunchKit/FontEngine.h"
#include "LaunchKit/IcnsFile.h"
#include "LaunchKit/IcnsWriter.h"
#include "LaunchKit/IconComposer.h"
#include "LaunchKit/IconImage.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <benchmark/benchmark.h>

#include <QImage>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;

const IconLabel label{"Work", "#FFFFFF", IconLabel::Position::bottom};

template<typename Work>
double millisecondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

double median(std::vector<double> values) {
    std::nth_element(values.begin(),
                     values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

template<typename Ours, typename Floor>
void compare(benchmark::State& state, Ours ours, Floor floor) {
    std::vector<double> ourTimes;
    std::vector<double> floorTimes;
    for ([[maybe_unused]] auto iteration : state) {
        floorTimes.push_back(millisecondsOf(floor));
        ourTimes.push_back(millisecondsOf(ours));
    }
    state.counters["ours_ms"] = median(ourTimes);
    state.counters["floor_ms"] = median(floorTimes);
    state.counters["ratio"] = median(ourTimes) / median(floorTimes);
}

// A modern icon: the artwork in all sizes, as the writer lays it out.
void writeModernIcon(const fs::path& file, IconArtist artist) {
    std::vector<std::string> chunks;
    for (const int side : {1024, 512, 256, 128, 64, 32, 16}) {
        chunks.push_back(icnsChunk(artist(side)));
    }
    write(file, icnsFile(chunks));
}

// The images that a composed icon holds as PNG files.
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

void composeAgainstEncoding(benchmark::State& state) {
    const TemporaryFolder folder;
    const fs::path source = folder / "source.icns";
    const fs::path composed = folder / "composed.icns";
    writeModernIcon(source, iconArtists.at(static_cast<std::size_t>(state.range(0))));
    IconComposer::compose(source, label, composed);
    const std::vector<QImage> images = pngImagesOf(composed);
    compare(
        state, [&] { IconComposer::compose(source, label, composed); },
        [&] {
            for (const QImage& image : images) {
                benchmark::DoNotOptimize(pngBytes(image));
            }
        });
    state.counters["png_images"] = static_cast<double>(images.size());
}

// What someone would write by hand. png2icns takes no 64 pixels, so the script does one size less.
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

void composeAgainstScript(benchmark::State& state) {
    const TemporaryFolder folder;
    chatIcon(1024).save(QString::fromStdString((folder / "source.png").string()));
    write(folder / "script", handScript);
    const std::string command =
        "sh -c \"$(cat '" + (folder / "script").string() + "')\" '" + folder.path().string() + "'";
    if (std::system(command.c_str()) != 0) {
        state.SkipWithError("needs convert and png2icns");
        return;
    }
    compare(
        state, [&] { IconComposer::compose(folder / "source.png", label, folder / "ours.icns"); },
        [&] { benchmark::DoNotOptimize(std::system(command.c_str())); });
}

void listImageAgainstLargest(benchmark::State& state) {
    const TemporaryFolder folder;
    const fs::path source = folder / "source.icns";
    writeModernIcon(source, iconArtists.at(static_cast<std::size_t>(state.range(0))));
    compare(
        state, [&] { benchmark::DoNotOptimize(iconImageNear(source, 64)); },
        [&] { benchmark::DoNotOptimize(widestIconImage(source)); });
}

BENCHMARK(composeAgainstEncoding)->DenseRange(0, 2)->Iterations(25)->Unit(benchmark::kMillisecond);
BENCHMARK(composeAgainstScript)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(listImageAgainstLargest)->DenseRange(0, 2)->Iterations(50)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace quorvel::testing

int main(int argc, char** argv) {
    quorvel::ensureFontEngine();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
