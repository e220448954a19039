#include "LinkDoor/LinkDoor.h"

#include "LinkDoor/LinkSession.h"
#include "Platform/files/FileSystem.h"
#include "Platform/processes/Process.h"
#include "tests/LinkDoor/LinkAddresses.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
namespace fs = std::filesystem;

std::vector<std::string> recordsIn(const std::string& text) {
    std::vector<std::string> records;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = text.find('\0', start);
        records.push_back(text.substr(start, end - start));
        start = end == std::string::npos ? text.size() : end + 1;
    }
    return records;
}

// A session with a default browser that writes down how it was started, and a clone's home.
class LinkDoorTest : public ::testing::Test {
protected:
    LinkDoorTest() {
        installBrowser("browser.desktop", "browser", "%u");
        write(sessionHome / ".config/mimeapps.list", "[Default Applications]\n"
                                                     "x-scheme-handler/http=browser.desktop\n"
                                                     "x-scheme-handler/https=browser.desktop\n"
                                                     "x-scheme-handler/mailto=mail.desktop\n");
        installBrowser("mail.desktop", "mail", "%U");
        session = {{"HOME", sessionHome.string()},
                   {"PATH", bin.string() + ":/usr/bin:/bin"},
                   {"DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere/bus"},
                   {"XDG_DATA_DIRS", (folder / "data").string()},
                   {"XDG_CONFIG_DIRS", (folder / "xdg").string()}};
        clone = session;
        clone["HOME"] = cloneHome.string();
        clone["PATH"] = (cloneHome / "bin").string() + ":" + bin.string() + ":/usr/bin:/bin";
        clone["DBUS_SESSION_BUS_ADDRESS"] = "disabled:";
        clone["XDG_CONFIG_HOME"] = (cloneHome / ".config").string();
        clone["DISPLAY"] = ":7";
        clone["XDG_ACTIVATION_TOKEN"] = "token";
        clone[cloneHomeVariable] = cloneHome.string();
        fs::create_directories(cloneHome);
        writeSession();
    }

    // Writes its arguments to NAME.arguments and its environment to NAME.environment.
    void installBrowser(const std::string& id, const std::string& name, const std::string& codes) {
        const fs::path program = bin / name;
        const std::string record = (folder / name).string();
        write(program, "#!/bin/sh\n"
                       "cat /proc/$$/environ >" +
                           record +
                           ".environment\n"
                           "sleep 0.5\n" // until the door has ended
                           "cut -d ' ' -f 4-6 /proc/$$/stat >" +
                           record +
                           ".stat\n"
                           "pwd >" +
                           record +
                           ".folder\n"
                           "ls /proc/$$/fd >" +
                           record +
                           ".descriptors\n"
                           "for each in \"$@\"; do printf '%s\\0' \"$each\"; done >" +
                           record + ".part\nmv " + record + ".part " + record + ".arguments\n");
        fs::permissions(program, fs::perms{0755});
        write(folder / "data/applications" / id, "[Desktop Entry]\nType=Application\nName=" + name +
                                                     "\nExec=" + program.string() + " " + codes +
                                                     "\n");
    }

    void writeSession(const std::string& opener = "") const {
        LinkSession record = LinkSession::between(session, clone);
        record.opener = opener;
        write(linkSessionFile(cloneHome), record.text());
        ::chmod(linkSessionFile(cloneHome).c_str(), 0600);
    }

    int open(const std::vector<std::string>& arguments, const std::string& as = "door") {
        fs::create_directories(folder / "own");
        fs::remove(folder / "own" / as);
        fs::create_symlink(door, folder / "own" / as);
        for (const char* name : {"browser", "mail", "xdg-open", "opener"}) {
            fs::remove((folder / name).string() + ".arguments");
        }
        Process::Options options;
        options.executable = folder / "own" / as;
        options.arguments = arguments;
        options.environment = clone;
        options.standardError = Process::Discard{};
        options.kept = kept;
        return Process::run(options).waitUntilExit();
    }

    [[nodiscard]] std::string recordOf(const std::string& name, const std::string& what) const {
        return read((folder / name).string() + "." + what);
    }
    // Waits for the program's start.
    [[nodiscard]] std::vector<std::string> argumentsOf(const std::string& name) const {
        const std::string file = (folder / name).string() + ".arguments";
        EXPECT_TRUE(waitUntil([&] { return fs::exists(file); })) << name << "\n" << log();
        return recordsIn(read(file));
    }
    [[nodiscard]] std::vector<std::string> environmentOf(const std::string& name) const {
        return recordsIn(recordOf(name, "environment"));
    }
    [[nodiscard]] std::string log() const { return read(cloneHome / "quorvel-instance.log"); }
    [[nodiscard]] bool nothingWasStarted() const {
        return !fs::exists((folder / "browser").string() + ".stat") &&
               !fs::exists((folder / "mail").string() + ".stat");
    }

    const TemporaryFolder folder;
    const fs::path bin = folder / "bin";
    const fs::path sessionHome = folder / "session";
    const fs::path cloneHome = folder / "clone";
    fs::path door = QUORVEL_LINK_DOOR;
    Environment session;
    Environment clone;
    int kept = -1; ///< a descriptor that the door inherits
};

TEST_F(LinkDoorTest, TheDefaultBrowserOfTheSessionGetsTheAddress) {
    EXPECT_EQ(open({"https://good.test/a b?c#d"}), 0);
    EXPECT_THAT(argumentsOf("browser"), ElementsAre("https://good.test/a b?c#d"));
    EXPECT_EQ(recordOf("browser", "folder"), sessionHome.string() + "\n");
    EXPECT_EQ(log(), "");
    EXPECT_EQ(open({"mailto:a@good.test"}), 0);
    EXPECT_THAT(argumentsOf("mail"), ElementsAre("mailto:a@good.test"));
}

TEST_F(LinkDoorTest, TheEnvironmentIsTheSessionsExceptForTheClick) {
    clone["QUORVEL_ANYTHING"] = "x";
    ASSERT_EQ(open({"https://good.test/"}), 0);
    (void)argumentsOf("browser");
    EXPECT_THAT(environmentOf("browser"),
                AllOf(Contains("HOME=" + sessionHome.string()), Contains("PATH=" + session["PATH"]),
                      Contains("DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere/bus"),
                      Contains("DISPLAY=:7"), Contains("XDG_ACTIVATION_TOKEN=token"),
                      Contains("QUORVEL_LINK_HOPS=1")));
    EXPECT_THAT(recordOf("browser", "environment"),
                AllOf(Not(HasSubstr("XDG_CONFIG_HOME")), Not(HasSubstr("QUORVEL_ANYTHING")),
                      Not(HasSubstr("QUORVEL_CLONE_HOME"))));
}

TEST_F(LinkDoorTest, EveryAcceptedAddressArrivesAsItIs) {
    for (const std::string& address : acceptedAddresses()) {
        ASSERT_EQ(open({address}), 0) << address.substr(0, 80);
        const std::string name = address.starts_with("mailto") ? "mail" : "browser";
        EXPECT_THAT(argumentsOf(name), ElementsAre(address));
    }
}

TEST_F(LinkDoorTest, HostileAddressesStartNothingAndAreNamedInTheLog) {
    for (const HostileAddress& each : hostileAddresses()) {
        fs::remove(cloneHome / "quorvel-instance.log");
        EXPECT_EQ(open({each.text}), linkRefused) << each.text.substr(0, 80);
        EXPECT_THAT(log(), AllOf(HasSubstr("a link was not opened"), HasSubstr(each.reason)));
    }
    EXPECT_TRUE(nothingWasStarted());
}

TEST_F(LinkDoorTest, TakesExactlyOneAddress) {
    EXPECT_EQ(open({}), linkUsage);
    EXPECT_EQ(open({"https://good.test/", "https://good.test/"}), linkUsage);
    EXPECT_EQ(open({"https://good.test/", "--option"}), linkUsage);
    EXPECT_TRUE(nothingWasStarted());
}

TEST_F(LinkDoorTest, TheBrowserLeavesTheCloneBehind) {
    // As the runner does; without it, another process would adopt the browser.
    ASSERT_EQ(::prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
    const auto lock = openForAppending(folder / "lock");
    ASSERT_TRUE(lock);
    kept = lock->descriptor();
    EXPECT_EQ(open({"https://good.test/"}), 0);
    (void)argumentsOf("browser");
    const std::string stat = recordOf("browser", "stat"); // parent, group, session
    EXPECT_EQ(std::stoi(stat), ::getpid()) << "the door has gone and nobody waits for the browser";
    EXPECT_NE(stat.substr(stat.rfind(' ') + 1), std::to_string(::getsid(0)) + "\n");
    EXPECT_THAT(recordOf("browser", "descriptors"), Not(HasSubstr("30")))
        << "it would hold the clone's lock";
    while (::waitpid(-1, nullptr, WNOHANG) > 0) {
    }
    ::prctl(PR_SET_CHILD_SUBREAPER, 0);
}

TEST_F(LinkDoorTest, ALoopEndsAtTheThirdHop) {
    // The session's default browser leads back into the clone.
    write(bin / "browser", "#!/bin/sh\n"
                           "echo x >>" +
                               (folder / "hops").string() +
                               "\n"
                               "QUORVEL_CLONE_HOME=" +
                               cloneHome.string() + " exec " + QUORVEL_LINK_DOOR + " \"$1\"\n");
    EXPECT_EQ(open({"https://good.test/"}), 0);
    EXPECT_TRUE(waitUntil([&] {
        return log().find("it was passed from clone to clone too often") != std::string::npos;
    }));
    EXPECT_EQ(read(folder / "hops"), "x\nx\nx\n");
}

TEST_F(LinkDoorTest, ABrowserThatOpensTheAddressItselfDoesNotInheritTheCounter) {
    const auto entry = [&](const std::string& command, const std::string& more) {
        write(folder / "data/applications/browser.desktop",
              "[Desktop Entry]\nType=Application\nName=browser\nExec=" + command + " %u\n" + more);
    };
    const auto counterInBrowser = [&] {
        EXPECT_EQ(open({"https://good.test/"}), 0);
        (void)argumentsOf("browser");
        std::string counter = "no environment";
        for (const std::string& variable : environmentOf("browser")) {
            if (variable.starts_with("PATH=") && counter == "no environment") {
                counter = "none";
            } else if (variable.starts_with("QUORVEL_LINK_HOPS=")) {
                counter = variable;
            }
        }
        return counter;
    };
    const std::string one = "QUORVEL_LINK_HOPS=1";
    entry(bin / "browser", "Categories=WebBrowser;\n");
    EXPECT_EQ(counterInBrowser(), one) << "a script may call anything";
    // A browser in machine code, which runs the script that records.
    const std::string fox = folder / "fox/fox";
    write(fox, read("/bin/sh"));
    fs::permissions(fox, fs::perms{0755});
    for (const char* mark : {"application.ini", "libxul.so"}) {
        write(folder / "fox" / mark, "[App]\n");
    }
    entry(fox + " " + (bin / "browser").string(), "");
    EXPECT_EQ(counterInBrowser(), "none");
    entry(fox + " " + (bin / "browser").string(), "X-Quorvel-Clone=/Apps/Work.app\n");
    EXPECT_EQ(counterInBrowser(), one) << "a clone may have a door of its own";
    write(bin / "browser", read(bin / "browser") + ": " + fox + "\n");
    entry(bin / "browser", "Categories=WebBrowser;\n");
    EXPECT_EQ(counterInBrowser(), one) << "a user's script may choose between browsers and clones";
}

TEST_F(LinkDoorTest, ACounterThatIsNotANumberCountsAsALoop) {
    for (const char* text : {"3", "4", "-1", "many", "1x", "99999999999999999999"}) {
        clone[linkHopsVariable] = text;
        EXPECT_EQ(open({"https://good.test/"}), linkLoops) << text;
    }
    EXPECT_TRUE(nothingWasStarted());
}

TEST_F(LinkDoorTest, WithoutASessionFileTheUsualSessionIsUsedAndThatIsLogged) {
    if (::getuid() != 0) {
        GTEST_SKIP() << "needs a user whose home has no list of default applications";
    }
    fs::remove(linkSessionFile(cloneHome));
    write(folder / "xdg/mimeapps.list", read(sessionHome / ".config/mimeapps.list"));
    door = folder / "door"; // the build may be where that user can't reach it
    fs::copy_file(QUORVEL_LINK_DOOR, door);
    for (const fs::path& each : {folder.path(), cloneHome, folder / "own"}) {
        fs::create_directories(each);
        fs::permissions(each, fs::perms::all);
    }
    EXPECT_TRUE(asUnprivilegedUser(folder.path(), [&] {
        return open({"https://good.test/"}) == 0 && argumentsOf("browser").size() == 1;
    }));
    EXPECT_THAT(log(), HasSubstr("no usable session file"));
    EXPECT_THAT(environmentOf("browser"), Contains("HOME=/nonexistent"));
    EXPECT_THAT(recordOf("browser", "environment"), Not(HasSubstr(cloneHome.string())));
}

TEST_F(LinkDoorTest, AChosenCloneGetsTheAddress) {
    installBrowser("opener.desktop", "opener", "");
    // It reports as a runner does, and goes on running.
    write(bin / "opener", read(bin / "opener") + "printf .+ >/proc/self/fd/30\nsleep 5\n");
    writeSession((bin / "opener").string());
    EXPECT_EQ(open({"https://good.test/"}), 0);
    EXPECT_THAT(argumentsOf("opener"), ElementsAre("https://good.test/"));
    EXPECT_THAT(environmentOf("opener"), Contains("HOME=" + sessionHome.string()));
    EXPECT_TRUE(nothingWasStarted());
}

TEST_F(LinkDoorTest, TheDefaultBrowserTakesOverForACloneThatCanNotOpenIt) {
    writeSession((folder / "gone").string());
    EXPECT_EQ(open({"https://good.test/"}), 0);
    EXPECT_THAT(argumentsOf("browser"), ElementsAre("https://good.test/"));
    EXPECT_THAT(log(), HasSubstr("“gone” couldn’t be started"));

    installBrowser("opener.desktop", "opener", "");
    write(bin / "opener", "#!/bin/sh\nprintf '.-it is busy' >/proc/self/fd/30\n");
    writeSession((bin / "opener").string());
    EXPECT_EQ(open({"https://good.test/2"}), 0);
    EXPECT_THAT(argumentsOf("browser"), ElementsAre("https://good.test/2"));
    EXPECT_THAT(log(), HasSubstr("it is busy"));
}

class LinkDoorTestXdgOpen : public LinkDoorTest {
protected:
    LinkDoorTestXdgOpen() { installBrowser("unused.desktop", "xdg-open", ""); }
};

TEST_F(LinkDoorTestXdgOpen, AddressesAreOpenedOutside) {
    for (const char* address : {"https://good.test/", "HTTP://good.test/"}) {
        EXPECT_EQ(open({address}, "xdg-open"), 0);
        EXPECT_THAT(argumentsOf("browser"), ElementsAre(address));
    }
    EXPECT_FALSE(fs::exists(folder / "xdg-open.stat"));
    EXPECT_EQ(open({"http://good.test\\@evil.test/"}, "xdg-open"), linkRefused);
    EXPECT_FALSE(fs::exists(folder / "xdg-open.stat")) << "the real one would accept it";
}

TEST_F(LinkDoorTestXdgOpen, EverythingElseIsLeftToTheRealOneInTheClone) {
    // The clone's PATH begins with the folder of our own one.
    clone["PATH"] = (folder / "own").string() + ":" + clone["PATH"];
    const std::vector<std::vector<std::string>> others{
        {"/tmp/a file.pdf"}, {"file:///tmp/a"}, {"tel:1"}, {"--help"}, {}, {"https://a.test", "x"}};
    for (const auto& arguments : others) {
        fs::remove((folder / "xdg-open").string() + ".arguments");
        EXPECT_EQ(open(arguments, "xdg-open"), 0);
        EXPECT_EQ(argumentsOf("xdg-open"), arguments);
        EXPECT_THAT(environmentOf("xdg-open"), Contains("HOME=" + cloneHome.string()));
    }
    EXPECT_TRUE(nothingWasStarted());
}

TEST_F(LinkDoorTestXdgOpen, IsTheWayOutWhereNoDefaultIsNamed) {
    fs::remove(sessionHome / ".config/mimeapps.list");
    EXPECT_EQ(open({"https://good.test/"}), 0);
    EXPECT_THAT(argumentsOf("xdg-open"), ElementsAre("https://good.test/"));
    EXPECT_THAT(environmentOf("xdg-open"), Contains("HOME=" + sessionHome.string()));

    session["PATH"] = (folder / "empty").string();
    writeSession();
    EXPECT_EQ(open({"https://good.test/"}), linkUnavailable);
    EXPECT_THAT(log(), HasSubstr("there is no program for it"));
    clone["PATH"] = (folder / "own").string();
    EXPECT_EQ(open({"/tmp/a"}, "xdg-open"), linkUnavailable) << "not itself again";
}

} // namespace
} // namespace quorvel
