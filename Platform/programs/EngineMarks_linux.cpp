#include "Platform/programs/EngineMarks_linux.h"

#include "Platform/entries/KeyFile_linux.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"

#include <algorithm>
#include <initializer_list>

namespace quorvel {
namespace fs = std::filesystem;
using Engine = ResolvedProgram::Engine;
using Toolkit = ResolvedProgram::Toolkit;
namespace {

bool hasAll(const fs::path& folder, std::initializer_list<const char*> names) {
    return std::all_of(names.begin(), names.end(),
                       [&](const char* name) { return itemExists(folder / name); });
}

bool hasAny(const fs::path& folder, std::initializer_list<const char*> names) {
    return std::any_of(names.begin(), names.end(),
                       [&](const char* name) { return itemExists(folder / name); });
}

template<typename Predicate>
bool anyNameIn(const fs::path& folder, const Predicate& predicate) {
    const auto names = directoryEntries(folder);
    return names && std::any_of(names->begin(), names->end(), predicate);
}

bool isEclipse(const fs::path& folder, const std::string& name) {
    return itemExists(folder / (name + ".ini")) &&
           anyNameIn(folder / "plugins", [](const std::string& plugin) {
               return plugin.starts_with("org.eclipse.equinox.launcher_");
           });
}

} // namespace

Engine engineIn(const fs::path& folder, const std::string& name) {
    if (hasAll(folder, {"icudtl.dat", "resources.pak", "chrome_100_percent.pak"})) {
        const bool hasArchive =
            hasAny(folder, {"resources/app.asar", "resources/app", "resources/default_app.asar"});
        return hasArchive ? Engine::electron : Engine::chromium;
    }
    if (hasAll(folder, {"application.ini", "libxul.so"})) {
        return Engine::firefox;
    }
    if (hasAll(folder, {"soffice.bin"})) {
        return Engine::libreOffice;
    }
    return isEclipse(folder, name) ? Engine::eclipse : Engine::other;
}

bool hasJar(const fs::path& folder) {
    return anyNameIn(folder, [](const std::string& name) { return name.ends_with(".jar"); });
}

std::string remotingNameIn(const fs::path& folder) {
    constexpr std::size_t limit = std::size_t{64} << 10U;
    const auto bytes = readFile((folder / "application.ini").native(), limit);
    // Its comments begin with ";", which the form doesn't know.
    std::string text;
    for (std::string_view rest = bytes ? *bytes : std::string_view{}; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size() - 1) + 1;
        text.append(rest.starts_with(';') ? std::string_view{} : rest.substr(0, end));
        rest.remove_prefix(end);
    }
    const auto file = KeyFile::parse(text, {});
    if (!file) {
        return {};
    }
    const std::string name = file->text("App", "RemotingName");
    return name.empty() ? file->text("App", "Name") : name;
}

Toolkit toolkitOf(const std::vector<std::string>& libraries) {
    // wxWidgets comes first, since it uses GTK.
    constexpr std::pair<const char*, Toolkit> marks[] = {
        {"libwx_", Toolkit::wx},           {"libgtk-4", Toolkit::gtk4}, {"libgtk-3", Toolkit::gtk3},
        {"libgtk-x11-2.0", Toolkit::gtk2}, {"libQt6Gui", Toolkit::qt6}, {"libQt5Gui", Toolkit::qt5},
    };
    for (const auto& [prefix, toolkit] : marks) {
        for (const std::string& library : libraries) {
            if (library.starts_with(prefix)) {
                return toolkit;
            }
        }
    }
    return Toolkit::unknown;
}

} // namespace quorvel
