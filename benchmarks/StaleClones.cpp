#include "benchmarks/StaleClones.h"

#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/InstanceRegistry.h"
#include "LaunchKit/Menu/MenuEntries.h"
#include "LaunchKit/WrapperGenerator.h"
#include "tests/support/AppBundles.h"
#include "tests/support/IcnsBuilder.h"
#include "tests/support/IconArtwork.h"
#include "tests/support/TemporaryHome.h"

#include <stdexcept>
#include <unistd.h>

namespace quorvel::benchmarks {

namespace fs = std::filesystem;

void makeClones(const fs::path& folder, int count) {
    const fs::path picture = folder / "picture.png";
    testing::write(picture, testing::pngOf(testing::chatIcon(128)));
    for (int number = 0; number < count; ++number) {
        WrapperGenerator::Options options;
        options.config = testing::minimalConfig("Clone " + std::to_string(number));
        options.config.bundleId = "app.quorvel.instance.clone" + std::to_string(number);
        options.config.kind = ShortcutKind::web;
        options.config.url = "https://example.test";
        options.config.instanceHome = (folder / "data" / options.config.displayName).string();
        options.runnerBinary = QUORVEL_RUNNER;
        options.customIcon = picture;
        options.arguments = ArgumentSource::engine;
        (void)WrapperGenerator().generate(InstanceRegistry::defaultSearchDirs().front(), options);
    }
    const MenuRepair repair = repairMenu(InstanceRegistry().list());
    if (repair.published != static_cast<std::size_t>(count) || !repair.problems.empty()) {
        throw std::runtime_error("not every clone is in the menu");
    }
}

void makeStale() {
    std::string runner = testing::read(QUORVEL_RUNNER);
    runner[runner.size() / 2] ^= 1;
    for (const InstanceRecord& clone : InstanceRegistry().list()) {
        testing::write(clone.bundleURL / "Contents/MacOS/runner", runner);
    }
    ::sync();
}

} // namespace quorvel::benchmarks
