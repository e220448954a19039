// Web clones with the real engine, in a session of an ordinary user.
#include "LaunchKit/Launching/WindowWord.h"
#include "WebHost/Window/DrawingChoice.h"
#include "tests/EndToEnd/WebCloneFixture.h"

#include <gmock/gmock.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/stat.h>

namespace quorvel {
namespace {

using namespace testing;
using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::ContainsRegex;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
namespace fs = std::filesystem;

class WebClonesTest : public WebCloneFixture {
protected:
    // Writes an image of one pixel; returns its path.
    std::string addIcon() {
        std::string icon = (session->home / "icon.png").string();
        session->run({"/usr/bin/python3", "-c",
                      "import base64, sys; open(sys.argv[1], 'wb').write(base64.b64decode('"
                      "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAIAAACQd1PeAAAADElEQVR4nGM4ISIHAAKiAPs+r7/7"
                      "AAAAAElFTkSuQmCC'))",
                      icon});
        return icon;
    }
    [[nodiscard]] std::string sizeOf(const std::string& window) const {
        const std::string all =
            session->outputOf({"/usr/bin/xdotool", "getwindowgeometry", "--shell", window});
        return all.substr(all.find("WIDTH="), all.find("SCREEN=") - all.find("WIDTH="));
    }
};

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

// The value of a key in what the site was told.
std::string valueOf(const std::string& line, const std::string& key) {
    const std::size_t at = line.find("&" + key + "=");
    const std::size_t begin = at == std::string::npos ? line.find("?" + key + "=") : at;
    const std::size_t end = begin + key.size() + 2;
    return begin == std::string::npos ? "" : line.substr(end, line.find('&', end) - end);
}

TEST_F(WebClonesTest, TwoClonesOfOneSiteShareNothingAndLoseNothing) {
    const std::vector<std::string> kept{"cookie", "local", "database", "cache", "worker"};
    const std::vector<std::string> names{"Portal", "Forum"};
    std::vector<std::string> ids;
    for (const std::string& name : names) {
        create(name, "storage");
        const std::size_t before = read(requests()).size();
        ASSERT_EQ(open(name), 0) << session->log();
        const std::string stored = request("/stored", before);
        for (const char* kind :
             {"cookie", "short", "local", "session", "database", "cache", "worker"}) {
            EXPECT_EQ(valueOf(stored, kind), "none") << name << ": " << kind;
        }
        ids.push_back(valueOf(stored, "id"));
    }
    EXPECT_NE(ids.at(0), ids.at(1));
    for (const pid_t pid : pagesProcesses()) {
        const std::string status = read("/proc/" + std::to_string(pid) + "/status");
        EXPECT_THAT(status, HasSubstr("\nSeccomp:\t2\n"));
        EXPECT_THAT(status, ContainsRegex("\nNSpid:\t[0-9]+\t[0-9]+")) << "a namespace of its own";
        if (!reasonAgainstOpenGL({}).empty()) {
            EXPECT_THAT(read("/proc/" + std::to_string(pid) + "/environ"),
                        HasSubstr("GSK_RENDERER=cairo"));
        }
    }
    EXPECT_EQ(pagesProcesses().size(), 2U);
    EXPECT_THAT(read("/proc/" + std::to_string(process("Portal")) + "/maps"),
                Not(HasSubstr("enchant_")))
        << "no dictionary is loaded unless spelling is checked";
    const std::string shown = window("Storage.* — Forum");
    const std::size_t beforeResizing = read(requests()).size();
    session->run({"/usr/bin/xdotool", "windowsize", "--sync", shown, "900", "650"});
    request("/resized", beforeResizing); // until then, the host may not know
    const std::string size = sizeOf(shown);
    for (int restart = 1; restart <= 2; ++restart) {
        for (const std::string& name : names) {
            EXPECT_LE(end(name), 10s);
            EXPECT_THAT(openToOthers(data(name)), IsEmpty());
            EXPECT_THAT(log(name), Not(HasSubstr("sandbox")));
            EXPECT_THAT(log(name), HasSubstr(reasonAgainstOpenGL({})));
        }
        EXPECT_TRUE(waitUntil([&] { return pagesProcesses().empty(); })) << "nothing is left";
        for (std::size_t clone = 0; clone < names.size(); ++clone) {
            const std::size_t before = read(requests()).size();
            ASSERT_EQ(open(names[clone]), 0) << session->log();
            const std::string stored = request("/stored", before);
            for (const std::string& kind : kept) {
                EXPECT_EQ(valueOf(stored, kind), ids[clone]) << kind << restart;
            }
            // These end with the session.
            EXPECT_EQ(valueOf(stored, "short"), "none");
            EXPECT_EQ(valueOf(stored, "session"), "none");
        }
    }
    EXPECT_EQ(sizeOf(window("Storage.* — Forum")), size);
}

TEST_F(WebClonesTest, ASecondOpeningReachesTheFirst) {
    create("Portal", "", {"--open-with"});
    ASSERT_EQ(open("Portal"), 0) << session->log();
    request("/seen");
    const pid_t first = process("Portal");
    const std::string shown = window("Inbox.* — Portal");
    create("Forum");
    ASSERT_EQ(open("Forum"), 0) << session->log();
    const std::string other = window("Inbox.* — Forum");
    EXPECT_TRUE(isActive(other));
    const std::string word = windowWord(cloneIdentity(wrapper("Portal")));
    EXPECT_THAT(session->outputOf({"/usr/bin/xprop", "-id", shown, "WM_CLASS"}),
                HasSubstr("\"" + word + "\", \"" + word + "\""));
    EXPECT_TRUE(fs::exists(session->home / ".local/share/applications" / (word + ".desktop")));
    EXPECT_EQ(handOver("Portal", "handed-over?a=b&c"), 0);
    request("/handed-over\\?a=b&c");
    EXPECT_EQ(process("Portal"), first);
    EXPECT_TRUE(isActive(shown));
    end("Forum");
    // The data folder decides, and not the wrapper.
    fs::rename(wrapper("Portal"), wrapper("Moved"));
    EXPECT_EQ(handOver("Moved", "moved"), 0);
    request("/moved");
    fs::rename(wrapper("Moved"), wrapper("Portal"));
    EXPECT_EQ(session->run({runner("Portal"), "file:///etc/passwd"}), 64);
    // A page whose process dies is back at once, and after several times there is a page instead.
    std::size_t before = read(requests()).size();
    ASSERT_EQ(handOver("Portal", "crash"), 0);
    request("/shown", before);
    const auto began = std::chrono::steady_clock::now();
    for (int deaths = 0; deaths < 3; ++deaths) {
        before = read(requests()).size();
        killPages();
        request("/shown", before);
    }
    killPages();
    // On a slow machine, the first death was too long ago to count.
    if (std::chrono::steady_clock::now() - began < 45s) {
        window("keeps crashing");
    }
    // Nobody answers there.
    ASSERT_EQ(session->run({runner("Portal"), "http://127.0.0.1:" + unusedPort() + "/"}), 0);
    window("Can’t open 127.0.0.1.* — Portal");
    EXPECT_EQ(process("Portal"), first);
}

TEST_F(WebClonesTest, PagesReachTheDesktopAsTheClone) {
    create("Portal", "", {"--open-with", "--menu-bar-icon"});
    const std::string word = windowWord(cloneIdentity(wrapper("Portal")));
    const std::string origin = address("").substr(0, address("").size() - 1);
    session->write(data("Portal") / ".local/share/quorvel/web/permissions.json",
                   R"({"permissions":{")" + origin + R"( notifications":"allow"}})");
    recordBus("eavesdrop=true");
    ASSERT_EQ(open("Portal"), 0) << session->log();
    request("/seen");
    EXPECT_TRUE(isOnBus("\"application://" + word + ".desktop\""));
    EXPECT_TRUE(isOnBus("int64 3 ")) << "the count in the title";
    window("\\(3\\) Inbox.* — Portal");
    ASSERT_EQ(handOver("Portal", "badge"), 0);
    EXPECT_EQ(request("/badge-set"), "/badge-set?refused=TypeError;TypeError;TypeError;");
    window("^\\(7\\) .*Chat.* — Portal");
    EXPECT_TRUE(isOnBus("int64 7 "));
    EXPECT_EQ(busText().find("int64 99 "), std::string::npos);
    EXPECT_THAT(statusItem(),
                AllOf(HasSubstr("'Title': <'Portal (7)'>"), HasSubstr("'XAyatanaLabel': <'7'>"),
                      HasSubstr("'IconName': <'web-browser'>")));
    EXPECT_TRUE(isOnBus("member=XAyatanaNewLabel string \"7\""));
    ASSERT_EQ(handOver("Portal", "notice"), 0);
    EXPECT_EQ(request("/notified"), "/notified?granted");
    EXPECT_TRUE(isOnBus("string \"Hello 4 — Portal\""));
    EXPECT_TRUE(isOnBus("string \"&lt;b&gt;you&lt;/b&gt;\""));
    EXPECT_TRUE(isOnBus("string \"desktop-entry\" variant string \"" + word));
    ASSERT_EQ(handOver("Portal", "badge-cleared"), 0);
    window("\\(5\\) Chat.* — Portal");
    EXPECT_EQ(busText().find("int64 5 "), std::string::npos) << "the page's own count is 0";
    EXPECT_EQ(read(bus()).find("Hello 5 — Portal"), std::string::npos) << "five a minute";
    EXPECT_EQ(read(bus()).find("member=SearchItems"), std::string::npos);
    ASSERT_EQ(handOver("Portal", ""), 0);
    ASSERT_EQ(handOver("Portal", "badge"), 0);
    window("^\\(7\\) .*Chat.* — Portal");
    const std::string isShown = "\"count-visible\" variant boolean true";
    const std::string isHidden = "\"count-visible\" variant boolean false";
    EXPECT_TRUE(waitUntil(
        [&] { return busText().rfind(isShown) + 1 > busText().rfind(isHidden) + 1; }, longestWait));
    end("Portal");
    EXPECT_TRUE(waitUntil(
        [&] { return busText().rfind(isHidden) + 1 > busText().rfind(isShown) + 1; }, longestWait))
        << "the badge is taken back";
}

TEST_F(WebClonesTest, WhatWasChosenForTheCloneHolds) {
    const std::string icon = addIcon();
    create("Portal", "facts",
           {"--browser", "--icon", icon, "--env", "QUORVEL_TRIAL={{instanceHome}}/x",
            "--menu-bar-icon", "--menu-bar-template"});
    create("Quiet", "facts");
    session->environment["SECRET_OF_THE_SESSION"] = "x";
    for (const char* name : {"Portal", "Quiet"}) {
        ASSERT_EQ(open(name), 0) << session->log();
    }
    const std::string shown = window("Facts.* — Portal");
    const std::string quiet = window("Facts.* — Quiet");
    const std::string word = windowWord(cloneIdentity(wrapper("Portal")));
    EXPECT_TRUE(waitUntil(
        [&] {
            return session
                       ->outputOf(
                           {"/usr/bin/xprop", "-id", shown, "-notype", "32c", "_NET_WM_ICON"})
                       .find(std::to_string(0xFFC8141EU)) != std::string::npos;
        },
        longestWait))
        << "the pixel";
    EXPECT_THAT(statusItem(), ContainsRegex("'IconName': <'" + word + "-[0-9a-f]+-symbolic'>"));
    std::ptrdiff_t found = 0;
    for (const pid_t pid : pagesProcesses()) {
        const std::string environment = read("/proc/" + std::to_string(pid) + "/environ");
        EXPECT_THAT(environment, Not(HasSubstr("SECRET_OF_THE_SESSION")));
        found +=
            environment.find("QUORVEL_TRIAL=" + data("Portal").string() + "/x") != std::string::npos
                ? 1
                : 0;
    }
    EXPECT_EQ(found, 1) << "a variable is for its own clone";

    // The desktop opens addresses in it, and the other one takes none.
    session->write(session->home / ".config/mimeapps.list",
                   "[Default Applications]\nx-scheme-handler/http=" + word + ".desktop\n");
    EXPECT_EQ(session->run({"/usr/bin/gio", "open", address("by-the-desktop")}), 0);
    request("/by-the-desktop");
    EXPECT_TRUE(isActive(shown));
    EXPECT_EQ(handOver("Quiet", "not-taken"), 0);
    const std::size_t before = read(requests()).size();
    pressIn(quiet, "F5");
    request("/facts-seen", before);
    EXPECT_THAT(read(requests()), Not(HasSubstr("/not-taken")));
}

TEST_F(WebClonesTest, ADownloadReplacesNothing) {
    session->write(session->home / "Downloads/precious.txt", "precious");
    create("Portal", "downloads");
    ASSERT_EQ(open("Portal"), 0) << session->log();
    const fs::path saved = session->home / "Downloads/precious (2).txt";
    EXPECT_TRUE(waitUntil([&] { return fs::exists(saved); }, longestWait));
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
    addBrowser();
    create("Portal", "link", {"--open-with"});
    ASSERT_EQ(open("Portal"), 0) << session->log();
    const std::string shown = window("Link.* — Portal");
    EXPECT_TRUE(waitUntil(
        [&] {
            click(shown);
            return waitUntil([&] { return read(browsed()).ends_with('\n'); }, 2s);
        },
        longestWait));
    EXPECT_THAT(read(browsed()),
                AllOf(HasSubstr("http://localhost:"),
                      HasSubstr("/elsewhere " + session->home.string() + " 0022\n")));
    EXPECT_THAT(read(requests()), Not(HasSubstr("/elsewhere"))) << "the clone stays where it is";
    // A click opens one window, which keeps its opener and says where it is.
    ASSERT_EQ(handOver("Portal", "popups"), 0);
    window("Popups.* — Portal");
    clickUntil(shown, "/opened");
    EXPECT_EQ(request("/opened"), "/opened?1");
    request("/signed-in\\?as-me");
    EXPECT_EQ(request("/asked"), "/asked?badge=undefined");
    window("^127\\.0\\.0\\.1 — .*Sign in.* — Portal");
    // One that closes itself leaves its opener logged in.
    ASSERT_EQ(handOver("Portal", "login"), 0);
    window("Login.* — Portal");
    clickUntil(shown, "/logged-in");
    EXPECT_THAT(request("/logged-in"), HasSubstr("done&"));
    EXPECT_THAT(request("/logged-in"), HasSubstr("who=me"));
    EXPECT_TRUE(isGone("Form.* — Portal"));
}

TEST_F(WebClonesTest, WithoutASessionBusItIsRefused) {
    create("Portal");
    session->environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=/nonexistent/bus";
    const std::string sentence =
        "“Portal” needs a session bus, and none answers; install the package "
        "dbus-user-session, and log in again\n";
    EXPECT_EQ(session->run({runner("Portal")}), 69);
    EXPECT_THAT(session->log(), HasSubstr("quorvel-runner: " + sentence));
    EXPECT_EQ(log("Portal"), "quorvel-runner: " + sentence);
    EXPECT_NE(open("Portal"), 0);
    EXPECT_THAT(session->log(), HasSubstr(sentence));
    // Nor is one started where the variable is missing.
    session->environment.erase("DBUS_SESSION_BUS_ADDRESS");
    session->environment["XDG_RUNTIME_DIR"] = session->home.string();
    EXPECT_EQ(session->run({runner("Portal")}), 69);
    EXPECT_THAT(pagesProcesses(), IsEmpty());
}

} // namespace
} // namespace quorvel
