#include "LaunchKit/Copying/DataSeed.h"

#include "LaunchKit/Copying/CloneWithData.h"
#include "Platform/processes/Process.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"
#include "tests/support/Waiting.h"

#include <csignal>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

const std::vector<std::string> chromiumMarks{"icudtl.dat", "resources.pak",
                                             "chrome_100_percent.pak"};
const std::vector<std::string> firefoxMarks{"libxul.so"};

class DataSeedTest : public ::testing::Test {
protected:
    // Installs a program with these files beside it, and returns a request to clone it.
    [[nodiscard]] WrapperFactory::Request appWith(const std::string& program,
                                                  const std::vector<std::string>& files,
                                                  const std::string& id = "org.example.App") const {
        const fs::path file = apps_.at("opt/" + program);
        write(file, read(helperProgram()));
        makeExecutable(file);
        for (const std::string& name : files) {
            write(file.parent_path() / name, "");
        }
        WrapperFactory::Request request;
        request.displayName = "Second";
        request.targetApp = apps_.addEntry(id, file.string());
        return request;
    }

    [[nodiscard]] WrapperFactory::Request firefox() const {
        const WrapperFactory::Request request = appWith("firefox/firefox", firefoxMarks);
        write(apps_.at("opt/firefox/application.ini"), "[App]\nRemotingName=firefox-esr\n");
        return request;
    }

    [[nodiscard]] static std::string errorOf(const WrapperFactory::Request& request) {
        try {
            (void)seedFor(request, {});
            return "no error";
        } catch (const DataCopyError& error) {
            return error.what();
        }
    }

    // Starts an installed program that goes on until it is ended.
    [[nodiscard]] Process start(const std::string& program, const fs::path& home) const {
        Environment environment = currentEnvironment();
        environment["HOME"] = home;
        return Process::run({.executable = apps_.at("opt/" + program),
                             .arguments = {"wait"},
                             .environment = environment});
    }

    static void end(Process& process) {
        process.sendSignal(SIGKILL);
        process.waitUntilExit();
    }

    // Returns the only part of a seed.
    static void expectPart(const WrapperFactory::Request& request, const fs::path& from,
                           const std::string& to, const Environment& session = {}) {
        const std::vector<DataPart> parts = seedFor(request, session);
        ASSERT_EQ(parts.size(), 1U);
        EXPECT_EQ(parts.front().from, from);
        EXPECT_EQ(parts.front().to, to);
    }

    TemporaryHome home_{};
    DesktopApps apps_{};
};

TEST_F(DataSeedTest, ForFirefoxItIsTheDefaultProfile) {
    write(home_ / ".mozilla/firefox/profiles.ini",
          "[Profile0]\nPath=one.default\nIsRelative=1\nDefault=1\n"
          "[Profile1]\nPath=two.esr\nIsRelative=1\n[Install1234]\nDefault=two.esr\n");
    write(home_ / ".mozilla/firefox/two.esr/prefs.js", "");
    expectPart(firefox(), home_ / ".mozilla/firefox/two.esr", "FirefoxProfile");
}

TEST_F(DataSeedTest, AFirefoxOfTheConfigurationFolderIsFoundToo) {
    const fs::path config = home_ / "elsewhere/mozilla/firefox";
    write(config / "profiles.ini", "[Profile0]\nPath=p\nIsRelative=1\n");
    fs::create_directory(config / "p");
    expectPart(firefox(), config / "p", "FirefoxProfile",
               {{"XDG_CONFIG_HOME", (home_ / "elsewhere").string()}});
}

TEST_F(DataSeedTest, AnAmbiguousProfileIsAnError) {
    EXPECT_THAT(errorOf(firefox()), HasSubstr(" has no data at "));
    write(home_ / ".mozilla/firefox/profiles.ini",
          "[Profile0]\nPath=a\nIsRelative=1\n[Profile1]\nPath=b\nIsRelative=1\n");
    fs::create_directories(home_ / ".mozilla/firefox/a");
    EXPECT_THAT(errorOf(firefox()), HasSubstr("It can’t be told which profile in "));
}

TEST_F(DataSeedTest, ForChromiumItIsTheWholeFolder) {
    const auto request = appWith("chromium", chromiumMarks);
    EXPECT_THAT(errorOf(request), HasSubstr("“org.example.App” has no data at "));
    write(home_ / ".config/chromium/Local State", "{}");
    expectPart(request, home_ / ".config/chromium", "QuorvelData");
}

TEST_F(DataSeedTest, AnUnknownBrowserIsAnError) {
    const auto request = appWith("mystery", chromiumMarks);
    write(home_ / ".config/mystery/Local State", "{}");
    EXPECT_EQ(errorOf(request), "It is not known where “org.example.App” keeps its data, so a "
                                "clone can’t start with it.");
}

TEST_F(DataSeedTest, ForElectronItIsTheFolderNamedAsThePackageSays) {
    auto files = chromiumMarks;
    const auto request = appWith("chat/chat", files);
    write(apps_.at("opt/chat/resources/app/package.json"),
          R"({"name": "chat-desktop", "productName": "Chat"})");
    write(home_ / ".config/Chat/Preferences", "{}");
    fs::create_directory(home_ / ".config/chat-desktop");
    expectPart(request, home_ / ".config/Chat", "QuorvelData");
    write(apps_.at("opt/chat/resources/app/package.json"), R"({"name": "../x"})");
    EXPECT_THAT(errorOf(request), HasSubstr("It is not known where "));
}

TEST_F(DataSeedTest, ForOthersItIsWhatIsKnown) {
    const auto request = appWith("vlc", {}, "vlc");
    EXPECT_THAT(errorOf(request), HasSubstr(" has no data at "));
    write(home_ / ".config/vlc/vlcrc", "");
    write(home_ / "data/vlc/ml.xspf", "");
    write(home_ / ".config/other/file", "");
    const std::vector<DataPart> parts =
        seedFor(request, {{"XDG_DATA_HOME", (home_ / "data").string()}});
    ASSERT_EQ(parts.size(), 2U);
    EXPECT_EQ(parts[0].from, home_ / ".config/vlc");
    EXPECT_EQ(parts[0].to, ".config/vlc");
    EXPECT_EQ(parts[1].from, home_ / "data/vlc");
    EXPECT_EQ(parts[1].to, ".local/share/vlc");
    EXPECT_THAT(errorOf(appWith("unknown", {})), HasSubstr("It is not known where "));
}

TEST_F(DataSeedTest, WhetherThereIsDataIsKnownEvenWhileTheOriginalRuns) {
    const auto has = [](const WrapperFactory::Request& request) {
        return hasSeed(AppBundle::read(*request.targetApp, noEntitlements).value(), {});
    };
    const auto vlc = appWith("vlc", {}, "vlc");
    EXPECT_FALSE(has(vlc)) << "no data";
    write(home_ / ".config/vlc/vlcrc", "");
    Process original = start("vlc", home_.path());
    EXPECT_TRUE(has(vlc));
    end(original);
    EXPECT_FALSE(has(appWith("unknown", {})));
    EXPECT_FALSE(hasSeed(AppBundle::read(makeAppBundle(home_ / "A.app")).value(), {}));
}

TEST_F(DataSeedTest, TheOriginalMustNotRun) {
    const auto request = appWith("vlc", {}, "vlc");
    write(home_ / ".config/vlc/vlcrc", "");
    Process ofAClone = start("vlc", home_ / "QuorvelInstances/Other");
    EXPECT_EQ(errorOf(request), "no error");
    Process original = start("vlc", home_.path());
    EXPECT_TRUE(waitUntil([&] {
        return errorOf(request) ==
               "“vlc” is running. Close it first, so that its data can be copied.";
    }));
    end(ofAClone);
    end(original);
    EXPECT_EQ(errorOf(request), "no error");
}

// Electron has one only if the application asks for it.
TEST_F(DataSeedTest, TheOriginalMustNotRunEvenWithoutALock) {
    write(home_ / ".config/Chat/Preferences", "{}");
    write(home_ / ".config/chromium/Local State", "{}");
    write(home_ / ".mozilla/firefox/profiles.ini", "[Profile0]\nPath=p\nIsRelative=1\n");
    fs::create_directory(home_ / ".mozilla/firefox/p");
    const auto chat = appWith("chat/chat", chromiumMarks, "chat");
    write(apps_.at("opt/chat/resources/app/package.json"), R"({"name": "Chat"})");
    const std::map<std::string, WrapperFactory::Request> requests{
        {"chat/chat", chat},
        {"chromium", appWith("chromium", chromiumMarks, "chromium")},
        {"firefox/firefox", firefox()}};
    for (const auto& [program, request] : requests) {
        EXPECT_EQ(errorOf(request), "no error") << program;
        Process original = start(program, home_.path());
        EXPECT_TRUE(waitUntil([&, &wanted = request] {
            return errorOf(wanted).find(" is running. Close it first") != std::string::npos;
        })) << program;
        end(original);
    }
}

TEST_F(DataSeedTest, AnOriginalThatIsStartedMeanwhileIsNoticed) {
    const auto request = appWith("vlc", {}, "vlc");
    write(home_ / ".config/vlc/vlcrc", "");
    const std::vector<DataPart> parts = seedFor(request, {});
    std::optional<Process> original;
    const FolderCopyOptions options{.progress = [&](const CopyProgress& /*progress*/) {
        if (!original) {
            original = start("vlc", home_.path());
            EXPECT_TRUE(waitUntil([&] { return errorOf(request) != "no error"; }));
        }
    }};
    EXPECT_THROW((void)createCloneWithData(WrapperFactory(runnerProgram()), request, {},
                                           {.parts = parts, .copy = options}),
                 DataCopyError);
    EXPECT_FALSE(fs::exists(home_ / "QuorvelInstances/Second"));
    ASSERT_TRUE(original);
    end(*original);
}

TEST_F(DataSeedTest, WhereTheCloneLooksForItsDataMustBeKnown) {
    write(home_ / ".config/chromium/Local State", "{}");
    auto request = appWith("chromium", chromiumMarks);
    request.extraArgs = {"--incognito"};
    EXPECT_THAT(errorOf(request), HasSubstr("With arguments of its own, "));
    request.kind = ShortcutKind::command;
    EXPECT_THAT(errorOf(request), HasSubstr("Only a clone of an application "));
}

TEST_F(DataSeedTest, ACloneIsMadeWithACopyAndTheOriginalStaysAsItIs) {
    const auto request = appWith("chromium", chromiumMarks);
    const fs::path original = home_ / ".config/chromium";
    write(original / "Local State", "{}");
    write(original / "Default/Preferences", "{}");
    fs::create_symlink("host-1", original / "SingletonLock");
    const auto before = treeOf(original);
    const CloneWithData made = createCloneWithData(WrapperFactory(runnerProgram()), request, {},
                                                   {.parts = seedFor(request, {})});
    const fs::path data = home_ / "QuorvelInstances/Second";
    auto expected = before;
    expected.erase("SingletonLock");
    EXPECT_EQ(treeOf(data / "QuorvelData"), expected);
    EXPECT_EQ(treeOf(original), before);
    EXPECT_EQ(made.clone.record->config.extraArgs,
              std::vector<std::string>{"--user-data-dir={{instanceHome}}/QuorvelData"});
}

} // namespace
} // namespace quorvel
