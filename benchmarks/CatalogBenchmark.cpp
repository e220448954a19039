// What the catalog's scan costs: with a code-signing tool against one bundle after the other, and
// without one against reading the bundles' files.
#include "Base/PropertyList.h"
#include "LaunchKit/AppCatalog.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "benchmarks/Benchmarks.h"

#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;

// As many keys as an ordinary application has.
PropertyListDictionary ordinaryInfo(const std::string& name) {
    PropertyListDictionary info{
        {"CFBundleDevelopmentRegion", "en"},
        {"CFBundleDisplayName", name},
        {"CFBundleExecutable", name},
        {"CFBundleIconFile", "AppIcon"},
        {"CFBundleIdentifier", "com.example." + name},
        {"CFBundleInfoDictionaryVersion", "6.0"},
        {"CFBundleName", name},
        {"CFBundlePackageType", "APPL"},
        {"CFBundleShortVersionString", "4.12.1"},
        {"CFBundleVersion", "41201"},
        {"LSApplicationCategoryType", "public.app-category.productivity"},
        {"LSMinimumSystemVersion", "11.0"},
        {"NSHighResolutionCapable", true},
        {"NSHumanReadableCopyright", "Copyright © 2026 Example. All rights reserved."},
        {"NSMainNibFile", "MainMenu"},
        {"NSPrincipalClass", "NSApplication"},
        {"NSSupportsAutomaticGraphicsSwitching", true},
    };
    for (const char* what : {"Camera", "Microphone", "Contacts", "Calendars", "Location"}) {
        info["NS" + std::string(what) + "UsageDescription"] = "Needed for calls and meetings.";
    }
    return info;
}

void makeBundles(const fs::path& folder, int count) {
    for (int number = 0; number < count; ++number) {
        const std::string name = "App" + std::to_string(number * 7919 % count);
        const fs::path contents = folder / (name + ".app") / "Contents";
        createDirectories(contents);
        writeFile(contents / "Info.plist", PropertyList::xml(ordinaryInfo(name)));
    }
}

fs::path makeTool(const fs::path& folder) {
    fs::path tool = folder / "codesign";
    writeFile(tool, "#!/bin/sh\nexec sleep 0.02\n");
    fs::permissions(tool, fs::perms{0755});
    return tool;
}

void scanAll(const fs::path& folder, int count, const EntitlementReader& entitlements) {
    if (AppCatalog::scan({folder}, entitlements).size() != static_cast<std::size_t>(count)) {
        throw std::runtime_error("applications are missing from the catalog");
    }
}

std::vector<std::string> namesIn(const fs::path& folder) {
    return directoryEntries(folder).value();
}

void readOneByOne(const fs::path& folder, const EntitlementReader& entitlements) {
    for (const std::string& name : namesIn(folder)) {
        if (!AppBundle::read(folder / name, entitlements)) {
            throw std::runtime_error("a bundle can't be read");
        }
    }
}

void readFiles(const fs::path& folder) {
    char buffer[8192];
    for (const std::string& name : namesIn(folder)) {
        const std::string file = (folder / name / "Contents" / "Info.plist").native();
        const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        while (::read(descriptor, buffer, sizeof buffer) > 0) {
        }
        ::close(descriptor);
    }
}

Row fasterThanOneByOne(const fs::path& folder) {
    constexpr int count = 500;
    const EntitlementReader tool = codeSigningTool(makeTool(folder));
    const fs::path bundles = folder / "tooled";
    makeBundles(bundles, count);
    constexpr double goal = 1.8;
    Row row = compareTimes(
        "scan 500 bundles, a tool of 20 ms each, against one by one",
        [&] { scanAll(bundles, count, tool); }, [&] { readOneByOne(bundles, tool); }, 1 / goal, 1);
    row.result = decimals(row.floor / row.figure, "x faster");
    row.goal = ">= " + decimals(goal, "x");
    return row;
}

Row asCheapAsReading(const fs::path& folder) {
    constexpr int count = 2000;
    const EntitlementReader none = codeSigningTool(folder / "no-such-tool");
    const fs::path bundles = folder / "plain";
    makeBundles(bundles, count);
    return compareTimes(
        "scan 2,000 bundles without a tool, against reading files",
        [&] { scanAll(bundles, count, none); }, [&] { readFiles(bundles); }, 2, 15);
}

} // namespace

std::vector<Row> catalogRows(const fs::path& folder) {
    return {fasterThanOneByOne(folder), asCheapAsReading(folder)};
}

} // namespace quorvel::benchmarks
