#pragma once

#include "tests/EndToEnd/Programs.h"
#include "tests/EndToEnd/UserSession.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <regex>
#include <string>
#include <vector>

namespace quorvel::testing {

inline constexpr std::chrono::seconds longestWait{90}; ///< on a machine that is busy

/// A user with a site of their own and clones of it, in a session of an ordinary user.
class WebCloneFixture : public ::testing::Test {
protected:
    void SetUp() override {
        if (const auto missing = UserSession::missingPrograms(); !missing.empty()) {
            GTEST_SKIP() << missing.front() << " is not installed";
        }
        for (const char* program : {"/usr/bin/bwrap", "/usr/bin/dbus-monitor", "/usr/bin/openssl",
                                    "/usr/bin/python3", "/usr/bin/xprop"}) {
            if (!std::filesystem::exists(program)) {
                GTEST_SKIP() << program << " is not installed";
            }
        }
        ASSERT_FALSE(std::filesystem::exists("/.flatpak-info")) << "it switches the sandbox off";
        session.emplace();
        if (session->run({"/usr/bin/bwrap", "--unshare-user", "--unshare-pid", "--ro-bind", "/",
                          "/", "/bin/true"}) != 0) {
            GTEST_SKIP() << "this machine has no sandboxes for ordinary users";
        }
        session->environment["QUORVEL_WEB_HOST"] = QUORVEL_WEB_HOST;
        session->environment["QUORVEL_LINK_DOOR"] = QUORVEL_LINK_DOOR;
        session->write(session->home / "site.py", read(QUORVEL_SITE));
        ASSERT_TRUE(startSite("port", {}));
    }

    // Starts the site once more if there is one already.
    bool startSite(const std::string& portFile, const std::vector<std::string>& more) {
        std::vector<std::string> command{"/usr/bin/python3", (session->home / "site.py").string(),
                                         (session->home / portFile).string(), requests().string()};
        command.insert(command.end(), more.begin(), more.end());
        session->start(command).detach();
        return waitUntil([&] { return std::filesystem::exists(session->home / portFile); },
                         longestWait);
    }

    void TearDown() override {
        if (session) {
            if (HasFailure()) {
                std::fputs((session->log() + log("Portal") + read(requests())).c_str(), stderr);
            }
            EXPECT_FALSE(std::filesystem::exists("/.flatpak-info"))
                << "it would switch the sandbox off";
        }
    }

    void create(const std::string& name, const std::string& page = "",
                const std::vector<std::string>& more = {}) {
        std::vector<std::string> command{QUORVEL_CTL, "create", "--kind", "web",
                                         "--name",    name,     "--url",  address(page)};
        command.insert(command.end(), more.begin(), more.end());
        ASSERT_EQ(session->run(command), 0) << session->log();
    }

    int open(const std::string& name) { return session->run({QUORVEL_CTL, "open", name}); }

    // Has the running clone open a page of the site.
    int handOver(const std::string& name, const std::string& page) {
        return session->run({runner(name), address(page)});
    }

    // Returns the process that shows the clone.
    [[nodiscard]] pid_t process(const std::string& name) const {
        return runnerOf(wrapper(name)).value_or(-1);
    }

    [[nodiscard]] std::vector<pid_t> pagesProcesses() const {
        std::vector<pid_t> found;
        for (const pid_t pid : processesWhose([](const std::string& line) {
                 return line.find("/WebKitWebProcess") < line.find('\0');
             })) {
            if (read("/proc/" + std::to_string(pid) + "/environ")
                    .find(session->folder().string()) != std::string::npos) {
                found.push_back(pid);
            }
        }
        return found;
    }

    void killPages() const {
        const std::vector<pid_t> processes = pagesProcesses();
        EXPECT_FALSE(processes.empty());
        for (const pid_t pid : processes) {
            ::kill(pid, SIGKILL);
        }
    }

    // Ends the clone, and returns how long it took.
    std::chrono::milliseconds end(const std::string& name) {
        const pid_t runner = process(name);
        const auto begin = std::chrono::steady_clock::now();
        ::kill(runner, SIGTERM);
        EXPECT_TRUE(waitUntil([&] { return process(name) != runner; }, longestWait));
        return std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - begin);
    }

    // Waits for a request that matches, after the first `skipped` bytes; returns its line.
    std::string request(const std::string& pattern, std::size_t skipped = 0) {
        std::smatch found;
        std::string text;
        const std::regex expression(pattern + ".*");
        EXPECT_TRUE(waitUntil(
            [&] {
                text = read(requests()).substr(skipped);
                return std::regex_search(text, found, expression);
            },
            longestWait))
            << pattern;
        return found.empty() ? "" : found.str(0);
    }

    // Waits for a window of the clone with such a title; returns its number.
    std::string window(const std::string& title) {
        std::string found;
        EXPECT_TRUE(waitUntil(
            [&] {
                found = windowsNamed(title);
                return !found.empty();
            },
            longestWait))
            << title;
        return found.substr(0, found.find('\n'));
    }

    void click(const std::string& window) {
        session->run(
            {"/usr/bin/xdotool", "mousemove", "--window", window, "400", "400", "click", "1"});
    }

    // Clicks with the secondary button.
    void openMenu(const std::string& window) {
        session->run(
            {"/usr/bin/xdotool", "mousemove", "--window", window, "400", "400", "click", "3"});
    }

    void type(const std::string& text) {
        session->run({"/usr/bin/xdotool", "type", "--delay", "5", text});
    }

    // Returns the numbers of the windows with such a title, a line for each.
    [[nodiscard]] std::string windowsNamed(const std::string& title) const {
        return session->outputOf({"/usr/bin/xdotool", "search", "--onlyvisible", "--name", title});
    }
    // Waits until no window has such a title.
    [[nodiscard]] bool isGone(const std::string& title) const {
        return waitUntil([&] { return windowsNamed(title).empty(); }, longestWait);
    }

#ifdef QUORVEL_ACCESSIBLE
    // Returns the roles and names of all controls, as assistive technology sees them.
    [[nodiscard]] std::string controls() const {
        return session->outputOf({QUORVEL_ACCESSIBLE, "names"});
    }
    [[nodiscard]] bool isShown(const std::string& text) const {
        return waitUntil([&] { return controls().find(text) != std::string::npos; }, longestWait);
    }
    void activate(const std::string& name) {
        EXPECT_TRUE(waitUntil(
            [&] {
                return session->run({QUORVEL_ACCESSIBLE, "press", name}) == 0;
            },
            longestWait))
            << name << "\n"
            << controls();
    }
#endif

    void press(const std::string& keys) {
        session->run({"/usr/bin/xdotool", "key", keys});
    }

    // Waits until that window takes the keys.
    [[nodiscard]] bool isActive(const std::string& window) const {
        return waitUntil(
            [&] {
                return session->outputOf({"/usr/bin/xdotool", "getactivewindow"}) == window + "\n";
            },
            longestWait);
    }
    // Presses keys in a window, which may not be there yet.
    void pressIn(const std::string& window, const std::string& keys) {
        EXPECT_TRUE(isActive(window));
        press(keys);
    }

    // Clicks until the site gets such a request.
    void clickUntil(const std::string& window, const std::string& text) {
        EXPECT_TRUE(waitUntil(
            [&] {
                click(window);
                return waitUntil([&] { return read(requests()).find(text) != std::string::npos; },
                                 std::chrono::seconds(2));
            },
            longestWait))
            << text;
    }

    // Makes a program the default browser that writes what it is given to "browsed".
    void addBrowser() {
        session->writeProgram(session->home / "bin/browser",
                              "printf '%s %s %s\\n' \"$1\" \"$HOME\" \"$(umask)\" >\"" +
                                  browsed().string() + "\"");
        session->write(session->home / ".local/share/applications/browser.desktop",
                       "[Desktop Entry]\nType=Application\nName=Browser\nExec=" +
                           (session->home / "bin/browser").string() + " %u\n");
        session->write(session->home / ".config/mimeapps.list",
                       "[Default Applications]\nx-scheme-handler/http=browser.desktop\n");
    }
    [[nodiscard]] std::filesystem::path browsed() const {
        return session->home / "browsed";
    }

    // Records what is sent on the bus, in a file.
    void recordBus(const std::string& rule) {
        session
            ->start({"/bin/sh", "-c", "exec dbus-monitor --session \"$0\" >\"$1\" 2>&1", rule,
                     bus().string()})
            .detach();
        ASSERT_TRUE(waitUntil([&] { return !read(bus()).empty(); }, longestWait));
    }

    [[nodiscard]] std::string busText() const {
        return std::regex_replace(read(bus()), std::regex("\\s+"), " ");
    }
    [[nodiscard]] bool isOnBus(const std::string& text) const {
        return waitUntil([&] { return busText().find(text) != std::string::npos; }, longestWait);
    }

    [[nodiscard]] long countOnBus(const std::string& text) const {
        const std::string all = busText();
        long count = 0;
        for (std::size_t at = all.find(text); at != std::string::npos;
             at = all.find(text, at + 1)) {
            ++count;
        }
        return count;
    }

    // Returns the properties of the one item in the tray.
    [[nodiscard]] std::string statusItem() {
        const auto call = [&](const std::string& name, const std::string& path,
                              const std::string& method, const std::vector<std::string>& more) {
            std::vector<std::string> command{"/usr/bin/gdbus", "call", "--session", "--dest", name,
                                             "--object-path",  path,   "--method",  method};
            command.insert(command.end(), more.begin(), more.end());
            return session->outputOf(command);
        };
        const std::string names =
            call("org.freedesktop.DBus", "/", "org.freedesktop.DBus.ListNames", {});
        const std::regex pattern("org\\.kde\\.StatusNotifierItem-[0-9]+-1");
        std::smatch found;
        return std::regex_search(names, found, pattern)
                   ? call(found.str(), "/StatusNotifierItem",
                          "org.freedesktop.DBus.Properties.GetAll", {"org.kde.StatusNotifierItem"})
                   : "";
    }

    [[nodiscard]] std::string address(const std::string& page) const {
        return "http://127.0.0.1:" + read(session->home / "port") + "/" + page;
    }
    [[nodiscard]] std::filesystem::path wrapper(const std::string& name) const {
        return session->home / "Applications" / (name + ".app");
    }
    [[nodiscard]] std::string runner(const std::string& name) const {
        return (wrapper(name) / "Contents/MacOS/runner").string();
    }
    [[nodiscard]] std::filesystem::path data(const std::string& name) const {
        return session->home / "QuorvelInstances" / name;
    }
    [[nodiscard]] std::string log(const std::string& name) const {
        return read(data(name) / "quorvel-instance.log");
    }
    [[nodiscard]] std::filesystem::path requests() const {
        return session->home / "requests";
    }
    [[nodiscard]] std::filesystem::path bus() const {
        return session->folder() / "home/bus";
    }

    std::optional<UserSession> session{};
};

} // namespace quorvel::testing
