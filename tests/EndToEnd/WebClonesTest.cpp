// Web clones with the real engine, in a session of an ordinary user.
#include "LaunchKit/WindowWord.h"
#include "tests/EndToEnd/Programs.h"
#include "tests/EndToEnd/UserSession.h"
#include "tests/support/Waiting.h"

#include <chrono>
#include <csignal>
#include <gmock/gmock.h>
#include <netinet/in.h>
#include <optional>
#include <regex>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr auto longest = 60s; // of a machine that is busy

// A user with a site of their own.
class WebClonesTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (const auto missing = UserSession::missingPrograms(); !missing.empty()) {
            GTEST_SKIP() << missing.front() << " is not installed";
        }
        ASSERT_FALSE(fs::exists("/.flatpak-info")) << "it switches the sandbox off";
        session.emplace();
        if (session->run({"/usr/bin/bwrap", "--unshare-user", "--unshare-pid", "--ro-bind", "/",
                          "/", "/bin/true"}) != 0) {
            GTEST_SKIP() << "this machine has no sandboxes for ordinary users";
        }
        session->environment["QUORVEL_WEB_HOST"] = QUORVEL_WEB_HOST;
        session->environment["QUORVEL_LINK_DOOR"] = QUORVEL_LINK_DOOR;
        // Compiling shaders without a graphics card takes seconds.
        session->environment["GSK_RENDERER"] = "cairo";
        session->write(session->home / "site.py", read(QUORVEL_SITE));
        session
            ->start({"/usr/bin/python3", (session->home / "site.py").string(),
                     (session->home / "port").string(), requests().string()})
            .detach();
        ASSERT_TRUE(waitUntil([&] { return fs::exists(session->home / "port"); }, longest));
    }

    void TearDown() override {
        if (session) {
            if (HasFailure()) {
                std::fputs((session->log() + log("Work") + read(requests())).c_str(), stderr);
            }
            EXPECT_FALSE(fs::exists("/.flatpak-info")) << "it would switch the sandbox off";
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

    // Ends the clone, and returns how long it took.
    std::chrono::milliseconds end(const std::string& name) {
        const pid_t runner = process(name);
        const auto begin = Clock::now();
        ::kill(runner, SIGTERM);
        EXPECT_TRUE(waitUntil([&] { return process(name) != runner; }, longest));
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - begin);
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
            longest))
            << pattern;
        return found.empty() ? "" : found.str(0);
    }

    // Waits for a window of the clone with such a title; returns its number.
    std::string window(const std::string& title) {
        std::string found;
        EXPECT_TRUE(waitUntil(
            [&] {
                found = session->outputOf(
                    {"/usr/bin/xdotool", "search", "--onlyvisible", "--name", title});
                return !found.empty();
            },
            longest))
            << title;
        return found.substr(0, found.find('\n'));
    }

    void click(const std::string& window) {
        session->run(
            {"/usr/bin/xdotool", "mousemove", "--window", window, "400", "400", "click", "1"});
    }

    // Records what is sent on the bus, in a file.
    void recordBus(const std::string& rule) {
        session
            ->start({"/bin/sh", "-c", "exec dbus-monitor --session \"$0\" >\"$1\" 2>&1", rule,
                     bus().string()})
            .detach();
        ASSERT_TRUE(waitUntil([&] { return !read(bus()).empty(); }, longest));
    }

    [[nodiscard]] std::string busText() const {
        return std::regex_replace(read(bus()), std::regex("\\s+"), " ");
    }
    [[nodiscard]] bool isOnBus(const std::string& text) const {
        return waitUntil([&] { return busText().find(text) != std::string::npos; }, longest);
    }

    [[nodiscard]] std::string address(const std::string& page) const {
        return "http://127.0.0.1:" + read(session->home / "port") + "/" + page;
    }
    [[nodiscard]] fs::path wrapper(const std::string& name) const {
        return session->home / "Applications" / (name + ".app");
    }
    [[nodiscard]] std::string runner(const std::string& name) const {
        return (wrapper(name) / "Contents/MacOS/runner").string();
    }
    [[nodiscard]] fs::path data(const std::string& name) const {
        return session->home / "QuorvelInstances" / name;
    }
    [[nodiscard]] std::string log(const std::string& name) const {
        return read(data(name) / "quorvel-instance.log");
    }
    [[nodiscard]] fs::path requests() const { return session->home / "requests"; }
    [[nodiscard]] fs::path bus() const { return session->folder() / "home/bus"; }

    std::optional<UserSession> session{};
};

std::string idIn(const std::string& line) {
    return line.substr(line.find("&id=") + 4, line.rfind("&webkit") - line.find("&id=") - 4);
}

std::string unusedPort() {
    const FileHandle socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const general = reinterpret_cast<sockaddr*>(&address);
    if (::bind(socket.descriptor(), general, size) != 0 ||
        ::getsockname(socket.descriptor(), general, &size) != 0) {
        throw std::runtime_error("no port is free");
    }
    return std::to_string(ntohs(address.sin_port));
}

// What other users could read or write.
std::vector<std::string> openToOthers(const fs::path& folder) {
    std::vector<std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        struct stat facts {};
        if (::lstat(entry.path().c_str(), &facts) == 0 && !S_ISLNK(facts.st_mode) &&
            (facts.st_mode & 0077U) != 0) {
            found.push_back(entry.path().string());
        }
    }
    return found;
}

TEST_F(WebClonesTest, TwoClonesOfOneSiteShareNothingAndLoseNothing) {
    std::vector<std::string> ids;
    for (const char* name : {"Work", "Play"}) {
        create(name);
        const std::size_t before = read(requests()).size();
        ASSERT_EQ(open(name), 0) << session->log();
        const std::string seen = request("/seen", before);
        EXPECT_THAT(seen, AllOf(HasSubstr("cookie=none"), HasSubstr("kept=none")));
        EXPECT_THAT(seen, HasSubstr("webkit=undefined")) << "the bridge is not for pages";
        ids.push_back(idIn(seen));
    }
    EXPECT_NE(ids.at(0), ids.at(1));
    for (const pid_t pid : pagesProcesses()) {
        EXPECT_THAT(read("/proc/" + std::to_string(pid) + "/status"), HasSubstr("\nSeccomp:\t2\n"));
    }
    EXPECT_EQ(pagesProcesses().size(), 2U);
    for (const char* name : {"Work", "Play"}) {
        EXPECT_LE(end(name), 2s);
        EXPECT_THAT(openToOthers(data(name)), IsEmpty());
        EXPECT_THAT(log(name), Not(HasSubstr("sandbox")));
    }
    EXPECT_TRUE(waitUntil([&] { return pagesProcesses().empty(); })) << "nothing is left";
    for (std::size_t clone = 0; clone < 2; ++clone) {
        const std::string name = clone == 0 ? "Work" : "Play";
        const std::size_t before = read(requests()).size();
        ASSERT_EQ(open(name), 0) << session->log();
        const std::string seen = request("/seen", before);
        EXPECT_THAT(seen, HasSubstr("cookie=id=" + ids[clone] + "&kept=" + ids[clone] + "&"));
        end(name);
    }
}

TEST_F(WebClonesTest, ASecondOpeningReachesTheFirst) {
    create("Work", "", {"--open-with"});
    ASSERT_EQ(open("Work"), 0) << session->log();
    request("/seen");
    const pid_t first = process("Work");
    const std::string shown = window("Inbox");
    const std::string word = windowWord(cloneIdentity(wrapper("Work")));
    EXPECT_THAT(session->outputOf({"/usr/bin/xprop", "-id", shown, "WM_CLASS"}),
                HasSubstr("\"" + word + "\", \"" + word + "\""));
    EXPECT_TRUE(fs::exists(session->home / ".local/share/applications" / (word + ".desktop")));
    EXPECT_EQ(handOver("Work", "handed-over?a=b&c"), 0);
    request("/handed-over\\?a=b&c");
    EXPECT_EQ(process("Work"), first);
    EXPECT_THAT(session->outputOf({"/usr/bin/xdotool", "getactivewindow"}), HasSubstr(shown));
    // The data folder decides, and not the wrapper.
    fs::rename(wrapper("Work"), wrapper("Moved"));
    EXPECT_EQ(handOver("Moved", "moved"), 0);
    request("/moved");
    fs::rename(wrapper("Moved"), wrapper("Work"));
    EXPECT_EQ(session->run({runner("Work"), "file:///etc/passwd"}), 64);
    // A page whose process dies is back at once, and after several times there is a page instead.
    const std::size_t before = read(requests()).size();
    ASSERT_EQ(handOver("Work", "crash"), 0);
    request("/shown", before);
    for (int time = 0; time < 3; ++time) {
        const std::size_t sofar = read(requests()).size();
        ASSERT_TRUE(waitUntil([&] { return pagesProcesses().size() == 1; }, longest));
        ::kill(pagesProcesses().front(), SIGKILL);
        request("/shown", sofar);
    }
    ASSERT_TRUE(waitUntil([&] { return pagesProcesses().size() == 1; }, longest));
    ::kill(pagesProcesses().front(), SIGKILL);
    window("keeps crashing");
    // Nobody answers there.
    ASSERT_EQ(session->run({runner("Work"), "http://127.0.0.1:" + unusedPort() + "/"}), 0);
    window("Can’t open 127.0.0.1.* — Work");
    EXPECT_EQ(process("Work"), first);
}

TEST_F(WebClonesTest, PagesReachTheDesktopAsTheClone) {
    create("Work", "", {"--open-with"});
    const std::string word = windowWord(cloneIdentity(wrapper("Work")));
    const std::string origin = address("").substr(0, address("").size() - 1);
    session->write(data("Work") / ".local/share/quorvel/web/permissions.json",
                   R"({"permissions":{")" + origin + R"( notifications":"allow"}})");
    recordBus("eavesdrop=true");
    ASSERT_EQ(open("Work"), 0) << session->log();
    request("/seen");
    EXPECT_TRUE(isOnBus("\"application://" + word + ".desktop\""));
    EXPECT_TRUE(isOnBus("int64 3 ")) << "the count in the title";
    window("\\(3\\) Inbox.* — Work");
    ASSERT_EQ(handOver("Work", "badge"), 0);
    EXPECT_EQ(request("/badge-set"), "/badge-set?refused=TypeError;TypeError;TypeError;");
    window("^\\(7\\) .*Chat.* — Work");
    EXPECT_TRUE(isOnBus("int64 7 "));
    EXPECT_EQ(busText().find("int64 99 "), std::string::npos);
    ASSERT_EQ(handOver("Work", "notice"), 0);
    EXPECT_EQ(request("/notified"), "/notified?granted");
    EXPECT_TRUE(isOnBus("string \"Hello 4 — Work\""));
    EXPECT_TRUE(isOnBus("string \"&lt;b&gt;you&lt;/b&gt;\""));
    EXPECT_TRUE(isOnBus("string \"desktop-entry\" variant string \"" + word));
    ASSERT_EQ(handOver("Work", "badge-cleared"), 0);
    window("\\(5\\) Chat.* — Work");
    EXPECT_EQ(busText().find("int64 5 "), std::string::npos) << "the page's own count is 0";
    EXPECT_EQ(read(bus()).find("Hello 5 — Work"), std::string::npos) << "five a minute";
    EXPECT_EQ(read(bus()).find("member=SearchItems"), std::string::npos);
    ASSERT_EQ(handOver("Work", ""), 0);
    ASSERT_EQ(handOver("Work", "badge"), 0);
    window("^\\(7\\) .*Chat.* — Work");
    end("Work");
    const std::string all = busText();
    EXPECT_GT(all.rfind("\"count-visible\" variant boolean false"),
              all.rfind("\"count-visible\" variant boolean true"))
        << "the badge is taken back";
    EXPECT_THAT(all, HasSubstr("\"count-visible\" variant boolean true"));
}

TEST_F(WebClonesTest, ADownloadReplacesNothing) {
    session->write(session->home / "Downloads/precious.txt", "precious");
    create("Work", "downloads");
    ASSERT_EQ(open("Work"), 0) << session->log();
    const fs::path saved = session->home / "Downloads/precious (2).txt";
    EXPECT_TRUE(waitUntil([&] { return fs::exists(saved); }, longest));
    EXPECT_EQ(read(saved), "downloaded");
    EXPECT_EQ(read(session->home / "Downloads/precious.txt"), "precious");
    EXPECT_TRUE(waitUntil([&] {
        return std::distance(fs::directory_iterator(session->home / "Downloads"), {}) == 2;
    }));
    struct stat facts {};
    EXPECT_EQ(::stat(saved.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777U, 0600U);
}

TEST_F(WebClonesTest, ClicksLeadWhereTheyShould) {
    session->writeProgram(session->home / "bin/browser", "printf '%s %s\\n' \"$1\" \"$HOME\" >\"" +
                                                             (session->home / "browsed").string() +
                                                             "\"");
    session->write(session->home / ".local/share/applications/browser.desktop",
                   "[Desktop Entry]\nType=Application\nName=Browser\nExec=" +
                       (session->home / "bin/browser").string() + " %u\n");
    session->write(session->home / ".config/mimeapps.list",
                   "[Default Applications]\nx-scheme-handler/http=browser.desktop\n");
    create("Work", "link", {"--open-with"});
    ASSERT_EQ(open("Work"), 0) << session->log();
    const std::string shown = window("Link.* — Work");
    EXPECT_TRUE(waitUntil(
        [&] {
            click(shown);
            return waitUntil([&] { return fs::exists(session->home / "browsed"); }, 2s);
        },
        longest));
    EXPECT_THAT(
        read(session->home / "browsed"),
        AllOf(HasSubstr("http://localhost:"), HasSubstr("/elsewhere " + session->home.string())));
    EXPECT_THAT(read(requests()), Not(HasSubstr("/elsewhere"))) << "the clone stays where it is";
    // A click opens one window, which keeps its opener and says where it is.
    ASSERT_EQ(handOver("Work", "popups"), 0);
    window("Popups.* — Work");
    EXPECT_TRUE(waitUntil(
        [&] {
            click(shown);
            return waitUntil([&] { return read(requests()).find("/opened") != std::string::npos; },
                             2s);
        },
        longest));
    EXPECT_EQ(request("/opened"), "/opened?1");
    request("/signed-in\\?as-me");
    EXPECT_EQ(request("/asked"), "/asked?badge=undefined");
    window("^127\\.0\\.0\\.1 — .*Sign in.* — Work");
}

TEST_F(WebClonesTest, WithoutASessionBusItIsRefused) {
    create("Work");
    session->environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent/bus";
    const std::string sentence =
        "“Work” needs a session bus, and none answers; install the package "
        "dbus-user-session, and log in again\n";
    EXPECT_EQ(session->run({runner("Work")}), 69);
    EXPECT_THAT(session->log(), HasSubstr("quorvel-runner: " + sentence));
    EXPECT_EQ(log("Work"), "quorvel-runner: " + sentence);
    EXPECT_NE(open("Work"), 0);
    EXPECT_THAT(session->log(), HasSubstr(sentence));
    // Nor is one started where the variable is missing.
    session->environment.erase("DBUS_SESSION_BUS_ADDRESS");
    session->environment["XDG_RUNTIME_DIR"] = session->home.string();
    EXPECT_EQ(session->run({runner("Work")}), 69);
    EXPECT_THAT(pagesProcesses(), IsEmpty());
}

} // namespace
} // namespace quorvel
