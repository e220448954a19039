#include "LaunchKit/Targets/AppEngine.h"

#include "LaunchKit/WrapperFactory.h"

#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace quorvel {
namespace {

using namespace testing;
using Engine = WrapperFactory::AppEngine;
namespace fs = std::filesystem;

class AppEngineTest : public ::testing::Test {
protected:
    // A bundle with this identifier that contains these items.
    [[nodiscard]] fs::path app(const std::string& bundleId,
                               const std::vector<std::string>& items = {}) {
        fs::path bundle = folder_ / (std::to_string(++count_) + ".app");
        write(bundle / "Contents/Info.plist",
              PropertyList::xml({{"CFBundleIdentifier", bundleId}}));
        for (const std::string& item : items) {
            fs::create_directories(bundle / item);
        }
        return bundle;
    }

    [[nodiscard]] Engine engineOf(const std::string& bundleId,
                                  const std::vector<std::string>& items = {}) {
        return WrapperFactory::detectEngine(app(bundleId, items), std::nullopt);
    }

    static constexpr auto electron = "Contents/Frameworks/Electron Framework.framework";
    static constexpr auto applicationIni = "Contents/Resources/application.ini";
    static constexpr auto chromeFramework = "Contents/Frameworks/Chrome Framework.framework";

    TemporaryFolder folder_;
    int count_ = 0;
};

TEST_F(AppEngineTest, FilesIdentifyAnEngine) {
    EXPECT_EQ(engineOf("com.x", {electron}), Engine::electron);
    EXPECT_EQ(engineOf("com.x", {"Contents/Eclipse/eclipse.ini"}), Engine::eclipse);
    EXPECT_EQ(engineOf("com.x", {"Contents/MacOS/eclipse"}), Engine::eclipse);
    EXPECT_EQ(engineOf("com.x", {"Contents/Resources/application.ini"}), Engine::firefox);
}

TEST_F(AppEngineTest, IdentifiersIdentifyAnEngineIgnoringCase) {
    EXPECT_EQ(engineOf("org.mozilla.firefox"), Engine::firefox);
    EXPECT_EQ(engineOf("ORG.Mozilla.nightly"), Engine::firefox);
    EXPECT_EQ(engineOf("net.TorBrowser.alpha"), Engine::firefox);
    EXPECT_EQ(engineOf("io.gitlab.LibreWolf"), Engine::firefox);
    EXPECT_EQ(engineOf("net.waterfox.x"), Engine::firefox);
    for (const char* id :
         {"com.google.Chrome", "com.google.chrome.canary", "com.brave.Browser",
          "com.microsoft.edgemac", "com.vivaldi.Vivaldi", "com.operasoftware.Opera",
          "org.chromium.Chromium", "ru.yandex.desktop.yandex-browser"}) {
        EXPECT_EQ(engineOf(id), Engine::chromium) << id;
    }
}

TEST_F(AppEngineTest, PrefixesDontMatchInTheMiddle) {
    EXPECT_EQ(engineOf("x.org.mozilla"), Engine::other);
    EXPECT_EQ(engineOf("x.com.google.chrome"), Engine::other);
}

TEST_F(AppEngineTest, AChromiumFrameworkIsMatchedCaseSensitively) {
    const std::string folder = "Contents/Frameworks/";
    EXPECT_EQ(engineOf("com.x", {folder + "Google Chrome Framework.framework"}), Engine::chromium);
    EXPECT_EQ(engineOf("com.x", {folder + "Chromium Embedded Framework.framework"}),
              Engine::chromium);
    EXPECT_EQ(engineOf("com.x", {folder + "google chrome framework.framework"}), Engine::other);
    EXPECT_EQ(engineOf("com.x", {folder + "Chrome.framework"}), Engine::other);
    EXPECT_EQ(engineOf("com.x", {folder + "Other Framework.framework"}), Engine::other);
}

TEST_F(AppEngineTest, AChromiumFrameworkIsKnownByTheEndOfItsName) {
    const std::string folder = "Contents/Frameworks/";
    for (const char* name : {"Google Chrome Framework.framework.old", "Chrome Framework",
                             "Chromium Framework.frameworks", "Chrome framework.framework"}) {
        EXPECT_EQ(engineOf("com.x", {folder + name}), Engine::other) << name;
    }
    EXPECT_EQ(engineOf("com.x", {folder + "A.framework", folder + "Chrome Framework.framework"}),
              Engine::chromium)
        << "whichever of them it is";
}

TEST_F(AppEngineTest, UnreadableFrameworksAreOther) {
    const fs::path file = app("com.x");
    write(file / "Contents/Frameworks", "a file");
    EXPECT_EQ(WrapperFactory::detectEngine(file, std::nullopt), Engine::other);
    const fs::path closed = app("com.x", {"Contents/Frameworks/Chrome Framework.framework"});
    EXPECT_TRUE(asUnprivilegedUser(folder_.path(), [&] {
        // A copy of its own, since permissions bind their owner like any other user.
        const fs::path own = folder_ / "own.app";
        fs::copy(closed, own, fs::copy_options::recursive);
        const bool listed = WrapperFactory::detectEngine(own, std::nullopt) == Engine::chromium;
        fs::permissions(own / "Contents/Frameworks", fs::perms::owner_exec);
        const bool unlisted = WrapperFactory::detectEngine(own, std::nullopt) == Engine::other;
        fs::permissions(own / "Contents/Frameworks", fs::perms::owner_all);
        return listed && unlisted;
    }));
}

TEST_F(AppEngineTest, ElectronWinsOverEverything) {
    EXPECT_EQ(engineOf("com.x", {electron, "Contents/Eclipse/eclipse.ini"}), Engine::electron);
    EXPECT_EQ(engineOf("org.mozilla.firefox", {electron}), Engine::electron);
    EXPECT_EQ(engineOf("com.google.chrome", {electron}), Engine::electron);
}

TEST_F(AppEngineTest, EclipseWinsOverIdentifiersAndOtherFiles) {
    for (const char* marker : {"Contents/MacOS/eclipse", "Contents/Eclipse/eclipse.ini"}) {
        EXPECT_EQ(engineOf("org.mozilla.x", {marker}), Engine::eclipse) << marker;
        EXPECT_EQ(engineOf("com.google.chrome", {marker}), Engine::eclipse) << marker;
        EXPECT_EQ(engineOf("com.x", {marker, applicationIni}), Engine::eclipse) << marker;
        EXPECT_EQ(engineOf("com.x", {marker, chromeFramework}), Engine::eclipse) << marker;
    }
}

TEST_F(AppEngineTest, FirefoxWinsOverChromium) {
    EXPECT_EQ(engineOf("com.google.chrome", {applicationIni}), Engine::firefox);
    EXPECT_EQ(engineOf("com.x", {applicationIni, chromeFramework}), Engine::firefox);
    for (const char* id : {"org.mozilla.x", "x.torbrowser", "x.librewolf", "x.waterfox"}) {
        EXPECT_EQ(engineOf(id, {chromeFramework}), Engine::firefox) << id;
    }
    EXPECT_EQ(engineOf("com.google.chrome.librewolf"), Engine::firefox);
}

TEST_F(AppEngineTest, EveryEngineHasItsRawString) {
    const std::array<std::pair<Engine, std::string_view>, 5> names{{
        {Engine::electron, "electron"},
        {Engine::chromium, "chromium"},
        {Engine::firefox, "firefox"},
        {Engine::eclipse, "eclipse"},
        {Engine::other, "other"},
    }};
    for (const auto& [engine, name] : names) {
        EXPECT_EQ(rawString(engine), name);
        EXPECT_EQ(caseNamed<WrapperFactory::AppEngine>(name), engine);
    }
    for (const char* text : {"", "Electron", "electron ", "none"}) {
        EXPECT_EQ(caseNamed<WrapperFactory::AppEngine>(text), std::nullopt) << text;
    }
}

TEST_F(AppEngineTest, ABundleWithoutMarkersIsOther) {
    EXPECT_EQ(engineOf("com.x"), Engine::other);
    EXPECT_EQ(engineOf("com.x", {"Contents/Frameworks"}), Engine::other);
    EXPECT_EQ(WrapperFactory::detectEngine("/no/such.app", std::nullopt), Engine::other);
}

TEST_F(AppEngineTest, AnUnreadableBundleIsStillKnownByItsFiles) {
    const fs::path bundle = folder_ / "bare.app";
    fs::create_directories(bundle / electron);
    EXPECT_EQ(WrapperFactory::detectEngine(bundle, std::nullopt), Engine::electron);
}

TEST_F(AppEngineTest, AGivenIdentifierPrecedesTheBundlesOwn) {
    EXPECT_EQ(WrapperFactory::detectEngine(app("com.x"), "com.google.Chrome"), Engine::chromium);
    EXPECT_EQ(WrapperFactory::detectEngine(app("com.google.Chrome"), ""), Engine::other);
}

TEST_F(AppEngineTest, OnlyElectronIsElectron) {
    EXPECT_TRUE(WrapperFactory::isElectron(app("com.x", {electron})));
    EXPECT_FALSE(WrapperFactory::isElectron(app("com.google.Chrome")));
}

TEST_F(AppEngineTest, EveryEngineHasItsArguments) {
    using ::testing::ElementsAre;
    const auto arguments = [&](const fs::path& bundle) {
        return WrapperFactory::autoDataDirArgs(bundle, std::nullopt);
    };
    EXPECT_THAT(arguments(app("com.x", {electron})),
                ElementsAre("--user-data-dir={{instanceHome}}/QuorvelData"));
    EXPECT_THAT(arguments(app("com.google.Chrome")),
                ElementsAre("--user-data-dir={{instanceHome}}/QuorvelData"));
    EXPECT_THAT(arguments(app("org.mozilla.firefox")),
                ElementsAre("-profile", "{{instanceHome}}/FirefoxProfile", "-no-remote"));
    EXPECT_THAT(arguments(app("com.x", {"Contents/MacOS/eclipse"})),
                ElementsAre("-data", "{{instanceHome}}/workspace"));
    EXPECT_THAT(arguments(app("com.x")), ElementsAre());
}

TEST_F(AppEngineTest, AnIdentifierFragmentKeepsLettersAndDigitsOnly) {
    EXPECT_EQ(WrapperFactory::idFragment("Work 2"), "work-2");
    EXPECT_EQ(WrapperFactory::idFragment("A.B"), "a-b");
    EXPECT_EQ(WrapperFactory::idFragment("My  App!"), "my--app-");
    EXPECT_EQ(WrapperFactory::idFragment("Café"), "café");
    EXPECT_EQ(WrapperFactory::idFragment("ÉCOLE 語"), "école-語");
    EXPECT_EQ(WrapperFactory::idFragment("😀"), "-");
    EXPECT_EQ(WrapperFactory::idFragment(""), "");
}

TEST_F(AppEngineTest, ADefaultIdentifierIsThePrefixAndTheFragment) {
    EXPECT_EQ(WrapperFactory::defaultBundleId("Work 2"), "app.quorvel.instance.work-2");
    EXPECT_EQ(WrapperFactory::defaultBundleId(""), "app.quorvel.instance.");
}

TEST_F(AppEngineTest, ArgumentsPointIntoAGivenHome) {
    using Arguments = std::vector<std::string>;
    EXPECT_EQ(dataDirArgs(Engine::electron, "/h"), Arguments{"--user-data-dir=/h/QuorvelData"});
    EXPECT_EQ(dataDirArgs(Engine::chromium, "/h"), dataDirArgs(Engine::electron, "/h"));
    EXPECT_EQ(dataDirArgs(Engine::firefox, "/h"),
              (Arguments{"-profile", "/h/FirefoxProfile", "-no-remote"}));
    EXPECT_EQ(dataDirArgs(Engine::eclipse, "/h"), (Arguments{"-data", "/h/workspace"}));
    EXPECT_EQ(dataDirArgs(Engine::other, "/h"), Arguments{});
    EXPECT_EQ(electronArgs(app("com.x", {electron}), "/h"),
              Arguments{"--user-data-dir=/h/QuorvelData"});
    EXPECT_EQ(electronArgs(app("com.google.chrome"), "/h"), Arguments{});
}

} // namespace
} // namespace quorvel
