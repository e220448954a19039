#include "tests/support/AppBundles.h"
#include "LaunchKit/InstanceConfig.h"

#include "tests/support/TemporaryHome.h"

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

std::string executableName(const fs::path& bundle, PropertyListDictionary& info) {
    const std::string name = bundle.stem().string();
    info.try_emplace("CFBundleIdentifier", "com.example." + name);
    info.try_emplace("CFBundleExecutable", name);
    return PropertyList::stringFor(info, "CFBundleExecutable").value_or(name);
}

} // namespace

fs::path helperProgram() {
    return QUORVEL_TEST_HELPER;
}

fs::path runnerProgram() {
    return QUORVEL_RUNNER;
}

fs::path makeAppBundle(const fs::path& bundle, PropertyListDictionary info,
                       const fs::path& executable) {
    const fs::path file = bundle / "Contents" / "MacOS" / executableName(bundle, info);
    write(bundle / "Contents" / "Info.plist", PropertyList::xml(info));
    fs::create_directories(file.parent_path());
    fs::copy_file(executable, file, fs::copy_options::overwrite_existing);
    return bundle;
}

fs::path makeScriptedAppBundle(const fs::path& bundle, std::string_view script,
                               PropertyListDictionary info) {
    const fs::path file = bundle / "Contents" / "MacOS" / executableName(bundle, info);
    write(bundle / "Contents" / "Info.plist", PropertyList::xml(info));
    write(file, "#!/bin/sh\n" + std::string(script) + "\n");
    makeExecutable(file);
    return bundle;
}

fs::path makeWrapper(const fs::path& bundle, const InstanceConfig& config) {
    write(bundle / "Contents" / "Resources" / "instance.json", config.json());
    return bundle;
}

fs::path makeWrapper(const fs::path& bundle, const std::string& name) {
    return makeWrapper(bundle, minimalConfig(name));
}

InstanceConfig minimalConfig(std::string name) {
    InstanceConfig config;
    config.bundleId = "app.quorvel.instance.test";
    config.instanceHome = "~/QuorvelInstances/" + name;
    config.displayName = std::move(name);
    return config;
}

void makeExecutable(const fs::path& file) {
    fs::permissions(file, fs::perms{0755});
}

} // namespace quorvel::testing
