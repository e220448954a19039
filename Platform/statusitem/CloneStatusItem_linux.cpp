// quorvel-status-item CLONE PID full|symbolic: shows the clone with that identity, whose runner is
// PID, its parent, in the tray. Ends with its parent.
#include "Platform/entries/MenuEntry.h"
#include "Platform/processes/MainExecutable.h"
#include "Platform/processes/Process.h"
#include "Platform/statusitem/SessionBus_linux.h"
#include "Platform/statusitem/StatusItem_linux.h"

#include <glib-unix.h>

#include <csignal>
#include <cstdlib>
#include <sys/prctl.h>
#include <unistd.h>

namespace quorvel {
namespace {

// As it is installed, or built.
std::filesystem::path commandLine() {
    const std::filesystem::path folder = mainExecutable().parent_path();
    const std::filesystem::path installed = folder / "../../bin/quorvelctl";
    std::error_code code;
    return std::filesystem::exists(installed, code) ? installed : folder / "quorvelctl";
}

// `quorvelctl` knows how each desktop brings a window to the front.
void showWindow(const std::string& identity, const std::string& token) {
    Environment environment = currentEnvironment();
    if (!token.empty()) {
        environment.insert_or_assign("XDG_ACTIVATION_TOKEN", token);
    }
    try {
        Process::run({.executable = commandLine(),
                      .arguments = {"open", identity},
                      .environment = environment,
                      .standardOutput = Process::Discard{},
                      .standardError = Process::Discard{}})
            .detach();
    } catch (const PlatformError&) {
        return; // the window stays where it is
    }
}

StatusItemOptions optionsFor(const std::string& identity, bool isSymbolic) {
    StatusItemOptions options;
    const auto published = publishedEntryOf(identity);
    options.id = published ? published->entry.startupWmClass : identity;
    options.title =
        published ? published->entry.name : std::filesystem::path(identity).stem().string();
    options.icon = statusIconName(published ? published->entry.icon : "", isSymbolic);
    return options;
}

int run(const std::string& identity, pid_t parent, bool isSymbolic) {
    const ObjectRef<GDBusConnection> bus = connectToSessionBus();
    if (!bus) {
        return 0; // no tray either
    }
    StatusItemOptions options = optionsFor(identity, isSymbolic);
    options.show = [&](const std::string& token) { showWindow(identity, token); };
    options.quit = [parent] { (void)::kill(parent, SIGTERM); };
    GMainLoop* const loop = g_main_loop_new(nullptr, FALSE);
    const auto end = [](gpointer running) -> gboolean {
        g_main_loop_quit(static_cast<GMainLoop*>(running));
        return G_SOURCE_CONTINUE;
    };
    g_unix_signal_add(SIGTERM, end, loop);
    g_signal_connect_swapped(bus.get(), "closed", G_CALLBACK(g_main_loop_quit), loop);
    (void)::prctl(PR_SET_PDEATHSIG, static_cast<unsigned long>(SIGTERM));
    {
        const StatusItem item(bus.get(), std::move(options));
        if (::getppid() == parent) { // it may have ended before the request above
            g_main_loop_run(loop);
        }
    }
    g_main_loop_unref(loop);
    return 0;
}

} // namespace
} // namespace quorvel

int main(int argc, char** argv) {
    return argc == 4 ? quorvel::run(argv[1], static_cast<pid_t>(std::strtol(argv[2], nullptr, 10)),
                                    std::string(argv[3]) == "symbolic")
                     : 2;
}
