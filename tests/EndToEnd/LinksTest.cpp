#include "tests/EndToEnd/Programs.h"
#include "tests/EndToEnd/UserSession.h"
#include "tests/LinkDoor/LinkAddresses.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <optional>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

constexpr auto longestBrowserStart = std::chrono::seconds(60);

// What a browser leaves in a home in which it was started.
std::vector<std::string> browserTracesIn(const fs::path& home) {
    std::vector<std::string> found;
    for (const char* name : {".mozilla", ".config/mozilla", ".cache/mozilla", ".config/chromium",
                             ".cache/chromium", ".config/epiphany"}) {
        if (fs::exists(home / name)) {
            found.emplace_back(name);
        }
    }
    return found;
}

int occurrences(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
        ++count;
    }
    return count;
}

// A user whose default browser is a Firefox that asks a server of this test for everything, and a
// clone that runs what a test tells it to.
class LinksTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const char* program :
             {"/usr/bin/firefox-esr", "/usr/bin/xdg-open", "/usr/bin/gio", "/usr/bin/python3"}) {
            if (!fs::exists(program)) {
                GTEST_SKIP() << program << " is not installed";
            }
        }
        if (const auto missing = UserSession::missingPrograms(); !missing.empty()) {
            GTEST_SKIP() << missing.front() << " is not installed";
        }
        session.emplace();
        installPrograms();
        startServer();
        chooseBrowser();
        session->writeProgram(session->home / "bin/opener",
                              "exec /bin/sh \"" + commands().string() + "\"");
        session->write(session->home / ".local/share/applications/opener.desktop",
                       "[Desktop Entry]\nType=Application\nName=Opener\nExec=" +
                           (session->home / "bin/opener").string() + " %u\n");
    }

    // Where that user can reach them, wherever the build is.
    void installPrograms() {
        fs::create_directories(installed());
        for (const fs::path& program : {fs::path(QUORVEL_CTL), runnerProgram(),
                                        fs::path(QUORVEL_LINK_DOOR), fs::path(QUORVEL_OPEN_URL)}) {
            fs::copy_file(program, installed() / program.filename());
        }
        session->environment["QUORVEL_LINK_DOOR"] = installed() / "quorvel-link-door";
    }
    [[nodiscard]] fs::path installed() const { return session->home / "quorvel"; }
    [[nodiscard]] std::string quorvelctl() const { return installed() / "quorvelctl"; }

    void startServer() {
        session
            ->start({"/usr/bin/python3", "-u", "-m", "http.server", "0", "--bind", "127.0.0.1",
                     "--directory", (session->home / "none").string()})
            .detach();
        const std::string before = "HTTP on 127.0.0.1 port ";
        ASSERT_TRUE(waitUntil([&] {
            const std::string text = session->log();
            const std::size_t at = text.find(before);
            port = at == std::string::npos ? "" : text.substr(at + before.size());
            port.resize(std::min(port.find(' '), port.size()));
            return !port.empty();
        })) << session->log();
    }

    void chooseBrowser() {
        const fs::path profile = session->home / "profile";
        session->write(profile / "user.js",
                       "user_pref('network.proxy.type', 1);\n"
                       "user_pref('network.proxy.http', '127.0.0.1');\n"
                       "user_pref('network.proxy.http_port', " +
                           port +
                           ");\n"
                           "user_pref('network.proxy.ssl', '127.0.0.1');\n"
                           "user_pref('network.proxy.ssl_port', " +
                           port +
                           ");\n"
                           "user_pref('dom.security.https_first', false);\n"
                           "user_pref('dom.security.https_first_schemeless', false);\n"
                           "user_pref('browser.shell.checkDefaultBrowser', false);\n"
                           "user_pref('browser.aboutwelcome.enabled', false);\n"
                           "user_pref('datareporting.policy.dataSubmissionEnabled', false);\n"
                           "user_pref('startup.homepage_welcome_url', '');\n"
                           "user_pref('browser.sessionstore.resume_from_crash', false);\n");
        session->write(session->home / ".local/share/applications/users-browser.desktop",
                       "[Desktop Entry]\nType=Application\nName=Browser\nExec=/usr/bin/firefox-esr "
                       "--profile " +
                           profile.string() + " %u\n");
        session->write(session->home / ".config/mimeapps.list",
                       "[Default Applications]\nx-scheme-handler/http=users-browser.desktop\n"
                       "x-scheme-handler/https=users-browser.desktop\n");
    }

    void makeClone(const std::vector<std::string>& more = {}) {
        std::vector<std::string> command{
            quorvelctl(), "create",
            "--target",   (session->home / ".local/share/applications/opener.desktop").string(),
            "--name",     "Clone"};
        command.insert(command.end(), more.begin(), more.end());
        ASSERT_EQ(session->run(command), 0) << session->log();
    }

    // Runs the command in the clone, and waits for both.
    int runInClone(const std::string& command) {
        session->write(commands(), command + "\n");
        return session->run(
            {(session->home / "Applications/Clone.app/Contents/MacOS/runner").string()});
    }

    [[nodiscard]] bool isAskedFor(const std::string& path,
                                  std::chrono::milliseconds deadline = longestBrowserStart) const {
        return waitUntil([&] { return session->log().find(path) != std::string::npos; }, deadline);
    }

    void endBrowser() {
        const auto browsers = [&] {
            return processesWhose([&](const std::string& line) {
                return line.find((session->home / "profile").string()) != std::string::npos;
            });
        };
        for (const pid_t pid : browsers()) {
            ::kill(pid, SIGTERM);
        }
        EXPECT_TRUE(waitUntil([&] { return browsers().empty(); }, std::chrono::seconds(30)));
    }

    // The user's browser opened everything, and the clone has got none.
    void expectNothingOfABrowserInTheClone() {
        EXPECT_THAT(browserTracesIn(cloneHome()), IsEmpty());
        EXPECT_THAT(session->processesWith("HOME=" + cloneHome().string()), IsEmpty())
            << "what was started left the clone";
        EXPECT_EQ(read(cloneHome() / "quorvel-instance.log").find("not opened"), std::string::npos);
    }

    [[nodiscard]] std::string address(const std::string& path) const {
        return "http://127.0.0.1:" + port + "/" + path;
    }
    [[nodiscard]] fs::path cloneHome() const { return session->home / "QuorvelInstances/Clone"; }
    [[nodiscard]] fs::path commands() const { return session->home / "commands"; }

    std::optional<UserSession> session{};
    std::string port{};
};

TEST_F(LinksTest, EveryWayLeadsToTheUsersBrowserWhetherItRunsOrNot) {
    makeClone();
    const std::vector<std::pair<std::string, std::string>> ways{
        {"xdg-open", "xdg-open"},
        {"gio", "gio open"},
        {"qt", installed() / "open_url"},
        {"browser", "\"$BROWSER\""},
        {"nobus-xdg-open", "DBUS_SESSION_BUS_ADDRESS=disabled: xdg-open"},
        {"nobus-gio", "DBUS_SESSION_BUS_ADDRESS=disabled: gio open"},
    };
    for (const auto& [name, command] : ways) {
        if (name == "gio") {
            endBrowser(); // so that this one starts it as well; the others find it running
        }
        EXPECT_EQ(runInClone(command + " '" + address(name + "?a=%20b") + "'"), 0) << command;
        EXPECT_TRUE(isAskedFor("GET /" + name + "?a=%20b ")) << command << "\n" << session->log();
    }
    expectNothingOfABrowserInTheClone();
    EXPECT_TRUE(fs::exists(session->home / "profile/places.sqlite"));
}

TEST_F(LinksTest, HostileAddressesReachNoBrowser) {
    makeClone();
    std::string script;
    int count = 0;
    for (const HostileAddress& each : hostileAddresses()) {
        // As a file, since a shell's words can't hold all of them.
        const fs::path file = session->home / "hostile" / std::to_string(count++);
        session->write(file, each.text + "x"); // "x" keeps line breaks at the end
        script += "a=$(cat " + file.string() +
                  "); quorvel=${a%x}; \"$BROWSER\" \"$quorvel\" 2>/dev/null && "
                  "echo \"OPENED " +
                  std::to_string(count) + "\"\n";
    }
    EXPECT_GE(count, 22);
    (void)runInClone(script);
    const std::string log = read(cloneHome() / "quorvel-instance.log");
    EXPECT_EQ(log.find("OPENED"), std::string::npos) << log;
    EXPECT_EQ(occurrences(log, "quorvel-link-door: a link was not opened: "), count) << log;
    EXPECT_FALSE(fs::exists(session->home / "profile/places.sqlite")) << "no browser was started";
    EXPECT_THAT(browserTracesIn(cloneHome()), IsEmpty());
}

TEST_F(LinksTest, ACloneOfABrowserTakesThemRunningOrNot) {
    ASSERT_EQ(session->run({quorvelctl(), "create", "--target", "firefox-esr.desktop", "--name",
                            "Fox", "--no-default-env"}),
              0)
        << session->log();
    const fs::path fox = session->home / "QuorvelInstances/Fox";
    session->write(fox / "FirefoxProfile/user.js", read(session->home / "profile/user.js"));
    makeClone({"--links", "Fox"});
    EXPECT_EQ(runInClone("xdg-open '" + address("first") + "'"), 0);
    EXPECT_TRUE(isAskedFor("GET /first ")) << session->log();
    EXPECT_EQ(runInClone("xdg-open '" + address("second") + "'"), 0);
    EXPECT_TRUE(isAskedFor("GET /second ")) << session->log();
    EXPECT_TRUE(fs::exists(fox / "FirefoxProfile/places.sqlite"));
    EXPECT_FALSE(fs::exists(session->home / "profile/places.sqlite")) << "not the user's own";
    EXPECT_EQ(read(cloneHome() / "quorvel-instance.log"), "");
    expectNothingOfABrowserInTheClone();
}

// A clone of a real application, in which a link is clicked.
class LinksTestClicks : public LinksTest {
protected:
    // Starts the clone, and repeats what xdotool is told to do in its window until the server is
    // asked: windows take a while before they listen.
    void clickIn(const std::string& application, const std::vector<std::string>& document,
                 const std::string& actions, const std::string& asked) {
        ASSERT_EQ(session->run({quorvelctl(), "create", "--target", application + ".desktop",
                                "--name", "Clone", "--open-with"}),
                  0)
            << session->log();
        std::vector<std::string> command{
            (session->home / "Applications/Clone.app/Contents/MacOS/runner").string()};
        command.insert(command.end(), document.begin(), document.end());
        Process runner = session->start(command);
        const auto click = [&] {
            session->run({"/bin/sh", "-c", "w=$(xdotool getactivewindow) && " + actions});
            return isAskedFor(asked, std::chrono::seconds(20));
        };
        EXPECT_TRUE(waitUntil(click, std::chrono::seconds(60)))
            << read(cloneHome() / "quorvel-instance.log") << session->log();
        runner.terminate();
        runner.waitUntilExit();
        EXPECT_THAT(browserTracesIn(cloneHome()), IsEmpty());
        EXPECT_TRUE(waitUntil([&] { return fs::exists(session->home / "profile/places.sqlite"); }));
    }
};

TEST_F(LinksTestClicks, ALinkThatEvinceShowsOpensInTheBrowser) {
    if (!fs::exists("/usr/bin/evince")) {
        GTEST_SKIP() << "evince is not installed";
    }
    const fs::path document = session->home / "linked.pdf";
    session->write(document,
                   "%PDF-1.4\n1 0 obj<</Type/Catalog/Pages 2 0 R>>endobj\n"
                   "2 0 obj<</Type/Pages/Kids[3 0 R]/Count 1>>endobj\n"
                   "3 0 obj<</Type/Page/Parent 2 0 R/MediaBox[0 0 600 600]/Annots[4 0 R]>>endobj\n"
                   "4 0 obj<</Type/Annot/Subtype/Link/Rect[0 0 600 600]/Border[0 0 0]"
                   "/A<</S/URI/URI(" +
                       address("evince") +
                       ")>>>>endobj\n"
                       "trailer<</Root 1 0 R>>\n%%EOF\n");
    clickIn("org.gnome.Evince", {document.string()},
            "eval $(xdotool getwindowgeometry --shell $w) && "
            "xdotool mousemove --window $w $((WIDTH / 2)) $((HEIGHT / 2)) click 1",
            "GET /evince ");
}

TEST_F(LinksTestClicks, AMenuItemOfKCalcOpensTheBrowser) {
    if (!fs::exists("/usr/bin/kcalc")) {
        GTEST_SKIP() << "kcalc is not installed";
    }
    clickIn("org.kde.kcalc", {}, "xdotool key alt+h && sleep 0.5 && xdotool key d",
            "CONNECT www.kde.org:443 ");
}

} // namespace
} // namespace quorvel
