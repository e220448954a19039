// Opening web clones, with another module in the web host's place.
#include "WebHost/WebHostModule.h"
#include "tests/Runner/RunnerFixture.h"
#include "tests/support/Waiting.h"

namespace quorvel {
namespace {

using namespace testing;
namespace fs = std::filesystem;

class WebCloneTest : public RunnerFixture {
protected:
    [[nodiscard]] std::string shown() const { return read(at("shown")); }

    ScopedEnvironment webHost_{"QUORVEL_WEB_HOST", QUORVEL_WEB_HOST_STUB};
    ScopedEnvironment version_{"STUB_ABI", std::to_string(webHostAbi)};
};

TEST_F(WebCloneTest, AHostOfTheSameVersionIsUsed) {
    const ScopedEnvironment stub("STUB", at("").string());
    write(at("end"), "");
    EXPECT_EQ(run(configOf(ShortcutKind::web)), 0) << read(errors());
    EXPECT_EQ(shown(), "shown\n");
}

TEST_F(WebCloneTest, AHostOfAnotherVersionIsReported) {
    const ScopedEnvironment stub("STUB", at("").string());
    const ScopedEnvironment version("STUB_ABI", std::to_string(webHostAbi + 1));
    write(at("end"), "");
    EXPECT_EQ(run(configOf(ShortcutKind::web)), 69);
    EXPECT_EQ(shown(), "");
    const std::string line = "quorvel-runner: “Work” was made by another version of Quorvel than "
                             "the web host that is installed; create it again\n";
    EXPECT_EQ(read(errors()), line);
    EXPECT_EQ(log(), line);
}

TEST_F(WebCloneTest, AHomeThatItMakesIsClosedToOthers) {
    const ScopedEnvironment version("STUB_ABI", "");
    EXPECT_EQ(run(configOf(ShortcutKind::web)), 69);
    EXPECT_EQ(fs::status(cloneHome()).permissions(), fs::perms{0700});
    fs::permissions(cloneHome(), fs::perms{0750});
    EXPECT_EQ(run(configOf(ShortcutKind::web)), 69);
    EXPECT_EQ(fs::status(cloneHome()).permissions(), fs::perms{0750});
}

// While the first ends, its socket no longer answers.
TEST_F(WebCloneTest, OpeningWhileTheFirstEndsShowsItAgain) {
    const ScopedEnvironment stub("STUB", at("").string());
    const fs::path bundle = wrapper(configOf(ShortcutKind::web));
    Process first = start(bundle);
    ASSERT_TRUE(waitUntil([&] { return shown() == "shown\n"; }));
    Process second = start(bundle);
    EXPECT_EQ(second.waitUntilExit(std::chrono::milliseconds(300)), std::nullopt) << "it waits";
    write(at("end"), "");
    EXPECT_EQ(first.waitUntilExit(), 0);
    EXPECT_EQ(second.waitUntilExit(), 0) << read(errors());
    EXPECT_EQ(shown(), "shown\nshown\n");
}

} // namespace
} // namespace quorvel
