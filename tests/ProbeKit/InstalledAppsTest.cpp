#include "ProbeKit/AppProber.h"
#include "tests/support/AppBundles.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/SessionBus.h"
#include "tests/support/UnprivilegedUser.h"
#include "tests/support/Waiting.h"
#include "tests/support/XServer.h"

#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <iostream>
#include <sstream>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

/// What a probe found, as an ordinary user of a desktop of their own.
struct Findings {
    std::string singleton{};
    std::string strategy{};
    std::string environment{}; ///< "KEY=value " for each variable
    std::map<std::string, std::vector<std::string>> buckets{};
    std::string left{}; ///< processes that still run afterwards

    [[nodiscard]] std::vector<std::string> leaks() const {
        std::vector<std::string> all;
        for (const auto& [bucket, paths] : buckets) {
            if (bucket.ends_with("Leak")) {
                all.insert(all.end(), paths.begin(), paths.end());
            }
        }
        return all;
    }
};

/// Installed applications, probed by an ordinary user on an X server, with a home and a session bus
/// of their own.
class InstalledAppsTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!XServer::missingPrograms().empty() || !SessionBus::isAvailable()) {
            GTEST_SKIP() << "Xvfb, openbox, xdotool or dbus-daemon is not installed";
        }
        server_.emplace();
    }

    static fs::path installed(const std::string& id) {
        return "/usr/share/applications/" + id + ".desktop";
    }

    // Runs in the ordinary user's process: sets the session up.
    void enterSession(bool hasFolderVariables) const {
        ::unsetenv("CFFIXED_USER_HOME");
        for (const char* folder : {"home", "run", "tmp"}) {
            fs::create_directories(folder_ / folder);
        }
        fs::permissions(folder_ / "run", fs::perms::owner_all);
        ::setenv("HOME", (folder_ / "home").c_str(), 1);
        ::setenv("XDG_RUNTIME_DIR", (folder_ / "run").c_str(), 1);
        ::setenv("TMPDIR", (folder_ / "tmp").c_str(), 1);
        for (const char* name :
             {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"}) {
            if (hasFolderVariables) {
                ::setenv(name, (folder_ / name).c_str(), 1);
            } else {
                ::unsetenv(name);
            }
        }
    }

    void probeAndWriteDown(const fs::path& app) const {
        std::vector<TrialProcess> copies;
        AppProber::Options options;
        options.release = [&](TrialProcess copy) { copies.push_back(std::move(copy)); };
        const ProbeResult result = AppProber::forApp(app)->run(options);
        std::vector<std::string> homes;
        homes.reserve(copies.size());
        for (const TrialProcess& copy : copies) {
            homes.push_back(copy.home);
        }
        terminateAndWait(std::move(copies), AppProber::grace);
        std::ofstream file(folder_ / "findings");
        file << rawString(result.singleton) << ' ' << rawString(result.recommendedStrategy) << '\n';
        for (const auto& [key, value] : result.environment) {
            file << key << '=' << value << ' ';
        }
        file << '\n';
        for (const std::string& home : homes) {
            for (const ProcessIdentity& process : processesWithHome(home)) {
                file << process.pid << ' ';
            }
        }
        file << '\n';
        for (const auto& [bucket, paths] : result.buckets) {
            for (const std::string& path : paths) {
                file << rawString(bucket) << ' ' << path << '\n';
            }
        }
    }

    [[nodiscard]] Findings findings() const {
        Findings found;
        std::istringstream text(read(folder_ / "findings"));
        text >> found.singleton >> found.strategy;
        text.ignore(1);
        std::getline(text, found.environment);
        std::getline(text, found.left);
        for (std::string bucket; text >> bucket;) {
            std::string path;
            std::getline(text >> std::ws, path);
            found.buckets[bucket].push_back(path);
        }
        return found;
    }

    // `before` runs in the user's session before the probe.
    Findings probe(
        const fs::path& app, bool hasFolderVariables = false,
        const std::function<void()>& before = [] {}) const {
        EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
            try {
                enterSession(hasFolderVariables);
                const SessionBus bus;
                before();
                probeAndWriteDown(app);
            } catch (const std::exception& error) {
                std::cerr << error.what() << '\n';
                return false;
            }
            return true;
        }));
        return findings();
    }

    TemporaryFolder folder_;

private:
    std::optional<XServer> server_{};
};

TEST_F(InstalledAppsTest, GeditIsSingleByTheBusAndRunsWithoutIt) {
    if (!fs::exists("/usr/bin/gedit")) {
        GTEST_SKIP() << "gedit is not installed";
    }
    const Findings found = probe(installed("org.gnome.gedit"));
    EXPECT_EQ(found.singleton, "machPort");
    EXPECT_EQ(found.environment, "DBUS_SESSION_BUS_ADDRESS=disabled: ");
    EXPECT_EQ(found.strategy, "home-override");
    EXPECT_THAT(found.leaks(), IsEmpty());
    EXPECT_EQ(found.left, "");
}

TEST_F(InstalledAppsTest, GeditRunsWithoutTheBusWhileTheUsersOwnIsOpen) {
    if (!fs::exists("/usr/bin/gedit")) {
        GTEST_SKIP() << "gedit is not installed";
    }
    const Findings found = probe(installed("org.gnome.gedit"), false, [] {
        Process::Options options;
        options.executable = "/usr/bin/gedit";
        options.standardError = Process::Discard{};
        // It ends with its bus.
        Process::run(options).detach();
        const auto ownsItsName = [] {
            Process::Options asking;
            asking.executable = "/usr/bin/dbus-send";
            asking.arguments = {"--session", "--print-reply", "--dest=org.freedesktop.DBus", "/",
                                "org.freedesktop.DBus.ListNames"};
            return Process::capture(asking, 65536).find("org.gnome.gedit") != std::string::npos;
        };
        if (!waitUntil(ownsItsName, std::chrono::seconds(60))) {
            throw std::runtime_error("gedit does not come up");
        }
    });
    EXPECT_EQ(found.singleton, "machPort");
    EXPECT_EQ(found.environment, "DBUS_SESSION_BUS_ADDRESS=disabled: ");
    EXPECT_EQ(found.strategy, "home-override");
}

TEST_F(InstalledAppsTest, KCalcRunsTwiceAndKeepsToItsHome) {
    if (!fs::exists("/usr/bin/kcalc")) {
        GTEST_SKIP() << "kcalc is not installed";
    }
    const Findings found = probe(installed("org.kde.kcalc"), true);
    EXPECT_EQ(found.singleton, "none");
    EXPECT_EQ(found.environment, "");
    EXPECT_EQ(found.strategy, "home-override");
    EXPECT_THAT(found.leaks(), IsEmpty());
    EXPECT_FALSE(found.buckets.at("captured").empty());
    EXPECT_EQ(found.left, "");
}

TEST_F(InstalledAppsTest, TransmissionRunsTwiceAndKeepsToItsHome) {
    if (!fs::exists("/usr/bin/transmission-gtk")) {
        GTEST_SKIP() << "transmission-gtk is not installed";
    }
    const Findings found = probe(installed("transmission-gtk"), true);
    EXPECT_EQ(found.singleton, "none");
    EXPECT_EQ(found.environment, "");
    EXPECT_THAT(found.leaks(), IsEmpty());
    EXPECT_THAT(found.buckets.at("captured"), Contains(HasSubstr("/.config/transmission/")));
}

TEST_F(InstalledAppsTest, FirefoxRunsTwiceAndKeepsToItsHome) {
    if (!fs::exists("/usr/bin/firefox-esr")) {
        GTEST_SKIP() << "firefox-esr is not installed";
    }
    const Findings found = probe(installed("firefox-esr"));
    EXPECT_EQ(found.singleton, "none");
    EXPECT_EQ(found.environment, "");
    EXPECT_EQ(found.strategy, "home-override");
    EXPECT_THAT(found.leaks(), IsEmpty());
    EXPECT_THAT(found.buckets.at("captured"), Contains(HasSubstr("places.sqlite")));
    EXPECT_EQ(found.left, "") << "its crash handlers detach themselves";
}

TEST_F(InstalledAppsTest, AnAppThatAsksTheUserDatabaseForTheHomeLeaks) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "needs a user database of its own";
    }
    const std::string home = (folder_ / "home").string();
    const auto problem = inPrivateMounts([&]() -> std::string {
        write(folder_ / "passwd",
              "root:x:0:0::/root:/bin/sh\nnobody:x:65534:65534::" + home + ":/bin/sh\n");
        bindMount(folder_ / "passwd", "/etc/passwd");
        write(folder_ / "notes-program",
              "#!/bin/sh\nhome=$(getent passwd \"$(id -u)\" | cut -d: -f6)\n"
              "mkdir -p \"$home/.notes\"; echo > \"$home/.notes/db\"\n"
              "mkdir -p ~/.notes; echo > ~/.notes/db\nexec sleep 600\n");
        makeExecutable(folder_ / "notes-program");
        write(folder_ / "org.example.Notes.desktop",
              "[Desktop Entry]\nType=Application\nName=Notes\nExec=" +
                  (folder_ / "notes-program").string() + "\n");
        (void)probe(folder_ / "org.example.Notes.desktop");
        return "";
    });
    if (!problem) {
        GTEST_SKIP() << "no private mounts here";
    }
    ASSERT_EQ(*problem, "");
    const Findings found = findings();
    EXPECT_THAT(found.leaks(), Contains(home + "/.notes/db"));
    EXPECT_THAT(found.buckets.at("captured"), Contains(HasSubstr("/.notes/db")));
    EXPECT_EQ(found.strategy, "container-redirect");
    EXPECT_EQ(found.singleton, "none");
}

} // namespace
} // namespace quorvel
