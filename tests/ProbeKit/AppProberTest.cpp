#include "tests/ProbeKit/Trial.h"

#include <gmock/gmock.h>
#include <regex>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

WriteEvent writeTo(const std::string& path) {
    return {path, false, true, false, false};
}

// A prober whose real Library is at /L; nothing is launched with it.
AppProber proberFor(Trial& trial) {
    AppProber::Dependencies with = trial.dependencies();
    with.realLibrary = "/L";
    return std::move(*AppProber::forApp(trial.app, std::move(with)));
}

LeakBucket bucketOf(const std::string& path, const std::string& bundleId = "com.example.Notes") {
    Trial trial(bundleId);
    const LeakBuckets buckets = proberFor(trial).classify({writeTo(path)}, "/tmp/home");
    EXPECT_EQ(buckets.size(), 1U);
    EXPECT_THAT(buckets.begin()->second, ElementsAre(path));
    return buckets.begin()->first;
}

TEST(AppProberTest, ClassificationAWriteInsideTheFakeHomeIsCaptured) {
    EXPECT_EQ(bucketOf("/tmp/home/Library/Preferences/x"), LeakBucket::captured);
    EXPECT_EQ(bucketOf("/tmp/home"), LeakBucket::captured);
}

TEST(AppProberTest, ClassificationTheContainerOfTheAppIsAContainerLeak) {
    EXPECT_EQ(bucketOf("/L/Containers/com.example.Notes/Data/x"), LeakBucket::containerLeak);
    EXPECT_EQ(bucketOf("/L/Containers/com.example.Notes"), LeakBucket::containerLeak);
    EXPECT_EQ(bucketOf("/L/Containers/com.other/Data/x"), LeakBucket::irrelevant);
}

TEST(AppProberTest, ClassificationAPreferenceThatMentionsTheAppIsAPrefsLeak) {
    EXPECT_EQ(bucketOf("/L/Preferences/com.example.notes.plist"), LeakBucket::prefsLeak);
    EXPECT_EQ(bucketOf("/L/Preferences/com.other.app.plist"), LeakBucket::irrelevant);
}

TEST(AppProberTest, ClassificationApplicationSupportThatMentionsTheAppIsADataLeak) {
    EXPECT_EQ(bucketOf("/L/Application Support/notes/x.db"), LeakBucket::dataLeak);
    EXPECT_EQ(bucketOf("/L/Application Support/Other/x.db"), LeakBucket::irrelevant);
}

TEST(AppProberTest, ClassificationPrefixesArePlainText) {
    EXPECT_EQ(bucketOf("/L/PreferencesX/notes"), LeakBucket::prefsLeak);
    EXPECT_EQ(bucketOf("/L/Application SupportX/notes"), LeakBucket::dataLeak);
    EXPECT_EQ(bucketOf("/L/Containers/com.example.Notes2/x"), LeakBucket::containerLeak);
    EXPECT_EQ(bucketOf("/tmp/home2/x"), LeakBucket::captured);
}

TEST(AppProberTest, ClassificationAnythingElseIsIrrelevant) {
    EXPECT_EQ(bucketOf("/L/Caches/com.example.Notes/x"), LeakBucket::irrelevant);
    EXPECT_EQ(bucketOf("/elsewhere/notes"), LeakBucket::irrelevant);
}

TEST(AppProberTest, ClassificationTheLastPieceOfTheIdentifierNamesTheApp) {
    EXPECT_EQ(bucketOf("/L/Preferences/NOTES", "com.example.Notes."), LeakBucket::prefsLeak);
    EXPECT_EQ(bucketOf("/L/Preferences/ÄPFEL", "com.example.Äpfel"), LeakBucket::prefsLeak);
    EXPECT_EQ(bucketOf("/L/Preferences/x", "Notes"), LeakBucket::irrelevant);
    EXPECT_EQ(bucketOf("/L/Preferences/a...b", "..."), LeakBucket::prefsLeak);
    EXPECT_EQ(bucketOf("/L/Preferences/x", ""), LeakBucket::irrelevant);
}

TEST(AppProberTest, ClassificationKeepsTheOrderAndEveryRepetition) {
    Trial trial;
    const AppProber prober = proberFor(trial);
    const LeakBuckets buckets =
        prober.classify({writeTo("/h/b"), writeTo("/x"), writeTo("/h/a"), writeTo("/h/b")}, "/h");
    EXPECT_THAT(buckets.at(LeakBucket::captured), ElementsAre("/h/b", "/h/a", "/h/b"));
    EXPECT_THAT(buckets.at(LeakBucket::irrelevant), ElementsAre("/x"));
    EXPECT_THAT(prober.classify({}, "/h"), IsEmpty());
}

TEST(AppProberTest, ClassificationAResultWithoutAPathInABucketCountsNone) {
    EXPECT_EQ(ProbeResult{}.count(LeakBucket::dataLeak), 0U);
    EXPECT_FALSE(ProbeResult{}.prefsLeak());
    ProbeResult result;
    result.buckets[LeakBucket::prefsLeak] = {"/a", "/a"};
    EXPECT_EQ(result.count(LeakBucket::prefsLeak), 2U);
    EXPECT_TRUE(result.prefsLeak());
}

TEST(AppProberTest, LeakBucketsHaveTheirNames) {
    for (const LeakBucket bucket : allCases<LeakBucket>()) {
        EXPECT_EQ(caseNamed<LeakBucket>(rawString(bucket)), bucket);
    }
    EXPECT_EQ(rawString(LeakBucket::containerLeak), "containerLeak");
    EXPECT_EQ(caseNamed<LeakBucket>("other"), std::nullopt);
}

Strategy recommended(const std::vector<LeakBucket>& leaks, SingletonTier singleton) {
    ProbeResult result;
    for (const LeakBucket leak : leaks) {
        result.buckets[leak] = {"/path"};
    }
    result.singleton = singleton;
    return AppProber::resolveStrategy(result);
}

TEST(AppProberTest, RecommendationTheFirstRuleThatAppliesWins) {
    using enum LeakBucket;
    EXPECT_EQ(recommended({containerLeak, dataLeak}, SingletonTier::machPort),
              Strategy::wrapperIdentity);
    EXPECT_EQ(recommended({dataLeak, prefsLeak}, SingletonTier::machPort),
              Strategy::containerRedirect);
    EXPECT_EQ(recommended({captured, prefsLeak}, SingletonTier::machPort), Strategy::unsupported);
    EXPECT_EQ(recommended({captured, prefsLeak}, SingletonTier::none), Strategy::homeOverride);
    EXPECT_EQ(recommended({}, SingletonTier::lsProhibited), Strategy::homeOverride);
    EXPECT_EQ(recommended({irrelevant}, SingletonTier::unknown), Strategy::homeOverride);
}

// Returns the tier for a second process that runs or not, and a number of running applications.
SingletonTier tier(bool runs, int running, PropertyListDictionary info = {}) {
    Trial trial;
    info.emplace("CFBundleIdentifier", "com.example.Notes");
    makeAppBundle(trial.app, info);
    const auto workspace = std::make_shared<StubWorkspace>();
    workspace->running.assign(static_cast<std::size_t>(running), {"com.example.Notes", "/n", 1});
    workspace->running.push_back({"com.example.Other", "/o", 2});
    trial.workspace = workspace;
    Process::Options options;
    options.executable = helperProgram();
    options.arguments = {runs ? "wait" : "exit", "0"};
    Process process = Process::run(options);
    if (!runs) {
        process.waitUntilExit();
    }
    const SingletonTier found = trial.prober().classifySingleton(process);
    process.terminate();
    process.waitUntilExit();
    return found;
}

TEST(AppProberTest, SingletonASecondThatRunsBesideTheFirstMeansNone) {
    EXPECT_EQ(tier(true, 2), SingletonTier::none);
    EXPECT_EQ(tier(true, 3), SingletonTier::none);
}

TEST(AppProberTest, SingletonASecondThatLivesButNeverCameUpMeansALock) {
    EXPECT_EQ(tier(true, 1), SingletonTier::lockFile);
    EXPECT_EQ(tier(true, 0), SingletonTier::lockFile);
}

TEST(AppProberTest, SingletonASecondThatQuitWhileOneRunsMeansAHandOver) {
    EXPECT_EQ(tier(false, 1), SingletonTier::machPort);
}

TEST(AppProberTest, SingletonASecondThatQuitWithNoneRunningIsUnknown) {
    EXPECT_EQ(tier(false, 0), SingletonTier::unknown);
}

TEST(AppProberTest, SingletonAProhibitionInTheBundleAlwaysDecides) {
    EXPECT_EQ(tier(true, 2, {{"LSMultipleInstancesProhibited", true}}),
              SingletonTier::lsProhibited);
    EXPECT_EQ(tier(false, 0, {{"LSMultipleInstancesProhibited", true}}),
              SingletonTier::lsProhibited);
}

TEST(AppProberTest, HasItsDefaults) {
    const TemporaryHome home;
    const Trial trial;
    const auto prober = AppProber::forApp(trial.app);
    ASSERT_TRUE(prober);
    EXPECT_EQ(prober->realLibrary(), (home / "Library").string());
    EXPECT_EQ(AppProber::Options().settleA.count(), 7.0);
    EXPECT_EQ(AppProber::Options().settleB.count(), 2.0);
    EXPECT_EQ(prober->bundle().bundleId, trial.bundleId);
}

TEST(AppProberTest, CannotBeMadeForWhatIsNotABundle) {
    const TemporaryFolder folder;
    EXPECT_FALSE(AppProber::forApp(folder / "None.app"));
}

TEST(AppProberTest, MakesANewHomeEachTime) {
    Trial trial;
    const AppProber prober = trial.prober();
    const std::string home = prober.makeTempHome();
    EXPECT_TRUE(fs::is_directory(home));
    EXPECT_EQ(fs::path(home).parent_path(), trial.temporary);
    const std::regex name("quorvel-probe-[0-9A-F]{8}-[0-9A-F]{4}-4[0-9A-F]{3}-[89AB][0-9A-F]{3}-"
                          "[0-9A-F]{12}");
    EXPECT_TRUE(std::regex_match(fs::path(home).filename().string(), name)) << home;
    EXPECT_NE(prober.makeTempHome(), home);
}

TEST(AppProberTest, KeepsItsHomesFromOtherUsers) {
    Trial trial;
    const mode_t before = ::umask(0);
    const std::string home = trial.prober().makeTempHome();
    ::umask(before);
    EXPECT_EQ(fs::status(home).permissions(), fs::perms{0700});
}

TEST(AppProberTest, MakesTheTemporaryFolderWhenItIsMissing) {
    Trial trial;
    fs::remove(trial.temporary);
    EXPECT_TRUE(fs::is_directory(trial.prober().makeTempHome()));
}

} // namespace
} // namespace quorvel
