#include "ProbeKit/ProfileGenerator.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

TEST(ProfileGeneratorTest, TheProfileHoldsWhatTheTrialShowed) {
    AppBundle bundle;
    bundle.url = "/A/Notes.app";
    bundle.bundleId = "com.example.Notes";
    bundle.sandboxed = true;
    ProbeResult result;
    result.buckets[LeakBucket::prefsLeak] = {"/p"};
    result.singleton = SingletonTier::machPort;
    result.recommendedStrategy = Strategy::unsupported;
    const AppProfile profile = ProfileGenerator::makeProfile(bundle, result, "macOS 14.5");
    EXPECT_EQ(profile.bundleId, "com.example.Notes");
    EXPECT_EQ(profile.displayName, "Notes");
    EXPECT_TRUE(profile.sandboxed);
    EXPECT_EQ(profile.strategy, Strategy::unsupported);
    EXPECT_EQ(profile.singleton, SingletonTier::machPort);
    EXPECT_TRUE(profile.prefsLeak);
    EXPECT_THAT(profile.extraArgs, IsEmpty());
    EXPECT_THAT(profile.verifiedOn, ElementsAre("macOS 14.5"));
    EXPECT_EQ(profile.confidence, Confidence::autoDetected);
}

TEST(ProfileGeneratorTest, OtherLeaksAreNotLeaksOfPreferences) {
    ProbeResult result;
    result.buckets[LeakBucket::dataLeak] = {"/d"};
    result.buckets[LeakBucket::containerLeak] = {"/c"};
    EXPECT_FALSE(ProfileGenerator::makeProfile(AppBundle{}, result, "macOS 14.5").prefsLeak);
}

TEST(ProfileGeneratorTest, TheProfileOfAnElectronAppHasItsDataArgument) {
    const TemporaryFolder folder;
    AppBundle bundle;
    bundle.url = folder / "Notes.app";
    fs::create_directories(bundle.url / "Contents/Frameworks/Electron Framework.framework");
    EXPECT_THAT(ProfileGenerator::makeProfile(bundle, {}, "macOS 14.5").extraArgs,
                ElementsAre("--user-data-dir={{instanceHome}}/QuorvelData"));
}

} // namespace
} // namespace quorvel
