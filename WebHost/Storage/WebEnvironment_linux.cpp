#include "WebHost/Storage/WebEnvironment_linux.h"

#include "Platform/homes/IsolatedEnvironment.h"
#include "WebHost/Storage/WebHome.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quorvel {
namespace {

// What a window needs of the session. All else may be secret, or lead to the user's keys.
constexpr std::array<std::string_view, 17> wantedVariables{
    "DESKTOP_STARTUP_ID", "DISPLAY",       "DRI_PRIME", "HOME",   "LANG", "LANGUAGE", "LOGNAME",
    "NO_AT_BRIDGE",       "PATH",          "SHELL",     "TMPDIR", "TZ",   "USER",     "XAUTHORITY",
    "XCURSOR_SIZE",       "XCURSOR_THEME", "XMODIFIERS"};
constexpr std::array<std::string_view, 20> wantedBeginnings{
    "DBUS_", "EGL_",     "FONTCONFIG_", "GDK_",   "GIO_",   "GSK_",      "GST_",
    "GTK_",  "LC_",      "LIBGL_",      "LIBVA_", "MESA_",  "PIPEWIRE_", "PULSE_",
    "VK_",   "WAYLAND_", "WEBKIT_",     "XDG_",   "__EGL_", "__GLX_"};
constexpr std::array<std::string_view, 2> wantedEnds{"_proxy", "_PROXY"};
// Switches that turn the sandbox off, or let others look into it.
constexpr std::array<std::string_view, 3> removedVariables{
    "WEBKIT_DISABLE_SANDBOX_THIS_IS_DANGEROUS", "WEBKIT_FORCE_SANDBOX", "WEBKIT_INSPECTOR_SERVER"};

bool isForPages(std::string_view name) {
    const auto isIt = [&](std::string_view other) { return name == other; };
    return std::none_of(removedVariables.begin(), removedVariables.end(), isIt) &&
           (std::any_of(wantedVariables.begin(), wantedVariables.end(), isIt) ||
            std::any_of(wantedBeginnings.begin(), wantedBeginnings.end(),
                        [&](std::string_view part) { return name.starts_with(part); }) ||
            std::any_of(wantedEnds.begin(), wantedEnds.end(),
                        [&](std::string_view part) { return name.ends_with(part); }));
}

} // namespace

Environment webEnvironment(const std::string& home, const Environment& session,
                           const std::map<std::string, std::string>& own) {
    Environment environment = session;
    std::erase_if(environment, [](const auto& entry) { return !isForPages(entry.first); });
    // In the user's own home nothing is replaced, but the engine opens the cache to pages.
    environment.insert_or_assign("XDG_CACHE_HOME", WebHome{home}.folder + "/pages");
    for (const auto& [name, value] : isolatedEnvironment(home, session)) {
        environment.insert_or_assign(name, value);
    }
    environment.insert_or_assign("HOME", home);
    for (const auto& [name, value] : own) {
        environment.insert_or_assign(name, value);
    }
    return environment;
}

} // namespace quorvel
