#include "LaunchKit/InstanceRecord.h"
#include "Platform/processes/Process.h"
#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"
#include "tests/support/SessionBus.h"
#include "tests/support/Waiting.h"
#include "tests/support/XServer.h"

#include <gmock/gmock.h>

#include <csignal>
#include <optional>
#include <sstream>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

constexpr const char* tracer = "/usr/bin/strace";

// A font that is installed, under another name.
std::string anyFont() {
    std::error_code ignored;
    for (const auto& item : fs::recursive_directory_iterator("/usr/share/fonts", ignored)) {
        if (item.path().extension() == ".ttf" || item.path().extension() == ".otf" ||
            item.path().extension() == ".t1") {
            return read(item);
        }
    }
    return {};
}

// The lines of a trace in which a file with that name was opened.
std::vector<std::string> openedIn(const std::string& trace, const std::string& name) {
    std::vector<std::string> opened;
    std::istringstream lines(trace);
    for (std::string line; std::getline(lines, line);) {
        if (line.find("openat(") != std::string::npos && line.find(name) != std::string::npos &&
            line.find("= -1") == std::string::npos) {
            opened.push_back(line);
        }
    }
    return opened;
}

// Returns why this machine can't trace an application with a window; std::nullopt if it can.
std::optional<std::string> obstacle() {
    for (const char* program : {"/usr/bin/gedit", tracer}) {
        if (!fs::exists(program)) {
            return std::string(program) + " is not installed";
        }
    }
    if (!XServer::missingPrograms().empty() || !SessionBus::isAvailable() || anyFont().empty()) {
        return "there is no display, bus or font";
    }
    Process::Options trial;
    trial.executable = tracer;
    trial.arguments = {"-o", "/dev/null", "/bin/true"};
    if (Process::run(trial).waitUntilExit() != 0) {
        return "no process may be traced here";
    }
    return std::nullopt;
}

// Starts a clone's runner so that the files that its processes open are written to `trace`.
Process startTraced(const fs::path& wrapper, const fs::path& home, const fs::path& trace) {
    Process::Options options;
    options.executable = tracer;
    options.arguments = {"-f",
                         "-qq",
                         "-e",
                         "trace=openat,execve",
                         "-o",
                         trace.string(),
                         (wrapper / "Contents/MacOS/runner").string()};
    options.environment = currentEnvironment();
    options.environment->insert_or_assign("HOME", home.string());
    options.environment->insert_or_assign("CFFIXED_USER_HOME", home.string());
    return Process::run(options);
}

TEST(OwnDataTest, AnEditorUsesTheUsersFontsButNotTheUsersData) {
    if (const auto reason = obstacle()) {
        GTEST_SKIP() << *reason;
    }
    QuorvelctlInAHome quorvelctl;
    const fs::path data = quorvelctl.home / ".local/share";
    write(data / "fonts/marker.ttf", anyFont());
    write(data / "gtksourceview-4/language-specs/marker.lang", "marker");
    const SessionBus bus;
    const XServer server;
    quorvelctl.run({"create", "--target", "/usr/share/applications/org.gnome.gedit.desktop",
                    "--name", "Editor"});

    const fs::path wrapper = quorvelctl.home / "Applications/Editor.app";
    const fs::path trace = quorvelctl.home / "trace";
    Process editor = startTraced(wrapper, quorvelctl.home.path(), trace);
    const bool isUp = waitUntil(
        [&] {
            const std::string seen = read(trace);
            return !openedIn(seen, "marker.ttf").empty() &&
                   !openedIn(seen, "gtksourceview-4/language-specs").empty();
        },
        std::chrono::seconds(120));
    if (const auto runner = runnerOf(wrapper)) {
        ::kill(*runner, SIGTERM); // the tracer ends with what it traces
    }
    (void)editor.waitUntilExit();
    const std::string seen = read(trace);
    ASSERT_TRUE(isUp) << seen.substr(seen.size() - std::min<std::size_t>(seen.size(), 2000));
    EXPECT_THAT(openedIn(seen, "marker.ttf").front(), HasSubstr("session-data/fonts"));
    EXPECT_THAT(openedIn(seen, "marker.lang"), IsEmpty());
}

TEST(OwnDataTest, ACloneFindsOnlyTheUserDataThatAllCopiesShare) {
    QuorvelctlInAHome quorvelctl;
    const fs::path data = quorvelctl.home / ".local/share";
    const std::vector<std::string> names{"fonts/marker.ttf", "katepart5/syntax/marker.xml",
                                         "themes/marker/index.theme", "marker/settings"};
    std::string words;
    for (const std::string& name : names) {
        write(data / name, "marker");
        words += " " + name;
    }
    // Looks where applications look for data.
    const fs::path program = quorvelctl.home / "bin/seeker";
    write(program, "#!/bin/sh\nIFS=:\nfor folder in $XDG_DATA_HOME $XDG_DATA_DIRS; do\n  IFS=' '\n"
                   "  for name in" +
                       words +
                       "; do\n    [ ! -e \"$folder/$name\" ] || echo \"$name\"\n  done\n"
                       "done > \"$HOME/found\"\n");
    makeExecutable(program);
    const fs::path entry = quorvelctl.home / "seeker.desktop";
    write(entry, "[Desktop Entry]\nType=Application\nName=Seeker\nExec=" + program.string() + "\n");
    quorvelctl.run({"create", "--target", entry, "--name", "Seeker"});
    Process::Options options;
    options.executable = quorvelctl.home / "Applications/Seeker.app/Contents/MacOS/runner";
    options.environment = quorvelctl.environment;
    ASSERT_EQ(Process::run(options).waitUntilExit(), 0) << quorvelctl.log("Seeker");
    EXPECT_EQ(read(quorvelctl.data("Seeker") / "found"),
              "fonts/marker.ttf\nthemes/marker/index.theme\n");
}

} // namespace
} // namespace quorvel
