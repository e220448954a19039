#include "benchmarks/Benchmarks.h"

#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "tests/support/AppBundles.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

// A clone as the generator leaves it, with an icon of the size that it has.
InstanceRecord makeClone(const fs::path& folder) {
    InstanceConfig config = testing::minimalConfig();
    config.openWithPassthrough = true;
    config.registerAsBrowser = true;
    const fs::path wrapper = testing::makeWrapper(folder / "Work.app", config);
    testing::write(wrapper / "Contents/MacOS/runner", "");
    testing::write(wrapper / "Contents/Resources/AppIcon.icns",
                   testing::pngOf(testing::chatIcon(512)));
    return {wrapper, config};
}

} // namespace

std::vector<Row> menuRows(const fs::path& folder) {
    constexpr double goal = 30;
    constexpr double milliseconds = 1000;
    constexpr int rounds = 25;
    const InstanceRecord clone = makeClone(folder);
    const testing::ScopedEnvironment data("XDG_DATA_HOME", (folder / "data").string());
    std::vector<double> times;
    times.reserve(rounds);
    for (int round = 0; round < rounds; ++round) {
        times.push_back(secondsOf([&] { publishInMenu(clone); }) * milliseconds);
    }
    const double median = percentile(times, 0.5);
    return {{.what = "publish a clone's entry and icons, and what it opens",
             .figure = median,
             .floor = goal,
             .unit = "ms",
             .result = decimals(median, "ms"),
             .goal = "<= 30 ms",
             .met = median <= goal}};
}

} // namespace quorvel::benchmarks
