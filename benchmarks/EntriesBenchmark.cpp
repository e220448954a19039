// What it costs to list the installed applications with their icons, against reading the same files
// and listing the same folders.
#include "LaunchKit/AppCatalog.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/FileWriting.h"
#include "benchmarks/Benchmarks.h"
#include "tests/support/TemporaryHome.h"

#include <dirent.h>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace quorvel::benchmarks {
namespace {

namespace fs = std::filesystem;
using testing::ScopedEnvironment;

constexpr int count = 500;
const std::vector<std::string> sizes{"16x16", "32x32", "48x48", "128x128", "256x256", "scalable"};

// As many translations and actions as an ordinary application's entry has: 5 KiB.
std::string ordinaryEntry(const std::string& name) {
    std::string text = "[Desktop Entry]\nType=Application\nName=" + name + "\n";
    for (int language = 0; language < 50; ++language) {
        const std::string code = {static_cast<char>('a' + language % 26),
                                  static_cast<char>('a' + language / 26)};
        text += "Name[" + code + "]=" + name + " in another language\n";
        text += "Comment[" + code + "]=What it is good for, said in another language\n";
    }
    return text + "Comment=What it is good for\nExec=sh %U\nIcon=" + name +
           "\nTerminal=false\nStartupNotify=true\nCategories=GTK;Utility;\n"
           "MimeType=text/plain;text/html;\nActions=new;\n"
           "[Desktop Action new]\nName=New Window\nExec=sh --new\n";
}

void makeApplications(const fs::path& data) {
    const fs::path theme = data / "icons" / "hicolor";
    std::string list;
    std::string groups;
    for (const std::string& size : sizes) {
        createDirectories(theme / size / "apps");
        list += size + "/apps,";
        groups += "[" + size +
                  "/apps]\nSize=" + std::to_string(std::strtol(size.c_str(), nullptr, 10)) + "\n";
    }
    writeFile(theme / "index.theme",
              "[Icon Theme]\nName=hicolor\nDirectories=" + list + "\n" + groups);
    createDirectories(data / "applications");
    for (int number = 0; number < count; ++number) {
        const std::string name = "app" + std::to_string(number * 7919 % count);
        writeFile(data / "applications" / (name + ".desktop"), ordinaryEntry(name));
        for (const std::string& size : sizes) {
            const std::string ending = size == "scalable" ? ".svg" : ".png";
            writeFile(theme / size / "apps" / (name + ending), "x");
        }
    }
}

void listAll(const fs::path& data) {
    int found = 0;
    for (const InstalledApp& app : AppCatalog::scan(noEntitlements)) {
        const auto icon = app.iconURL();
        found += icon && icon->native().starts_with(data.native()) ? 1 : 0;
    }
    if (found != count) {
        throw std::runtime_error("applications or icons are missing");
    }
}

std::vector<std::string> namesIn(const fs::path& folder) {
    return directoryEntries(folder).value();
}

void readAll(const fs::path& data) {
    char buffer[16384];
    const fs::path entries = data / "applications";
    for (const std::string& name : namesIn(entries)) {
        const std::string file = entries.native() + "/" + name;
        const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);
        while (::read(descriptor, buffer, sizeof buffer) > 0) {
        }
        ::close(descriptor);
    }
    for (const std::string& size : sizes) {
        (void)namesIn(data / "icons" / "hicolor" / size / "apps");
    }
}

} // namespace

std::vector<Row> entriesRows(const fs::path& folder) {
    makeApplications(folder);
    const ScopedEnvironment own("XDG_DATA_HOME", folder.string());
    const ScopedEnvironment others("XDG_DATA_DIRS", (folder / "none").string());
    return {compareTimes(
        "catalog of 500 desktop entries with icons, against reading files and folders",
        [&] { listAll(folder); }, [&] { readAll(folder); }, 2, 25)};
}

} // namespace quorvel::benchmarks
