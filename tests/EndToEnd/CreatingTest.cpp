// Making clones of a name that is taken, by several programs at once, and of one that runs.
#include "tests/EndToEnd/Programs.h"
#include "tests/support/AppBundles.h"
#include "tests/support/Waiting.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <future>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::HasSubstr;
namespace fs = std::filesystem;

class CreatingTest : public ::testing::Test {
protected:
    // Starts the creations at once. Returns what each of them printed.
    std::vector<std::string> createAtOnce(int count, const std::vector<std::string>& more) {
        std::vector<std::future<std::string>> creations;
        for (int number = 0; number < count; ++number) {
            std::vector<std::string> words{"create",    "--kind", "command",
                                           "--name",    "Work",   "--command",
                                           "/bin/true", "--arg",  std::to_string(number)};
            words.insert(words.end(), more.begin(), more.end());
            creations.push_back(std::async(std::launch::async,
                                           [this, words] { return quorvelctl_.outcomeOf(words); }));
        }
        std::vector<std::string> outcomes;
        outcomes.reserve(creations.size());
        for (auto& creation : creations) {
            outcomes.push_back(creation.get());
        }
        return outcomes;
    }

    QuorvelctlInAHome quorvelctl_;
    fs::path wrapper_ = quorvelctl_.home / "Applications/Work.app";
};

TEST_F(CreatingTest, OfTwoAtOnceOneFailsAndNamesTheClone) {
    constexpr int count = 6;
    for (int round = 0; round < 6; ++round) {
        // Every second time there is no folder yet that could be locked in advance.
        fs::remove_all(round % 2 == 0 ? wrapper_ : wrapper_.parent_path());
        int winners = 0;
        for (const std::string& outcome : createAtOnce(count, {})) {
            if (outcome == wrapper_.string() + "\n") {
                ++winners;
            } else {
                EXPECT_THAT(outcome, HasSubstr("“Work” already exists at " + wrapper_.string()));
                EXPECT_THAT(outcome, HasSubstr("FAILED 1"));
            }
        }
        EXPECT_EQ(winners, 1);
        EXPECT_EQ(treeOf(wrapper_).size(), 8U) << "a whole wrapper, and nothing of another one";
    }
}

TEST_F(CreatingTest, OfManyReplacementsAtOnceTheLastCountsAndIsWhole) {
    for (const std::string& outcome : createAtOnce(6, {"--replace"})) {
        EXPECT_EQ(outcome, wrapper_.string() + "\n");
    }
    EXPECT_EQ(quorvelctl_.json({"show", "Work"})["config"]["commandPath"], "/bin/true");
    EXPECT_EQ(quorvelctl_.run({"open", "Work"}), "");
}

TEST_F(CreatingTest, ReplacingARunningCloneLeavesItsApplicationAndItsDataAlone) {
    const fs::path app = quorvelctl_.home / "Applications/Thing.app";
    makeScriptedAppBundle(app, "echo \"started $1\"; exec sleep 600");
    const auto create = [&](const std::vector<std::string>& more) {
        std::vector<std::string> words{"create", "--target", app.string(), "--name", "Work"};
        words.insert(words.end(), more.begin(), more.end());
        return quorvelctl_.outcomeOf(words);
    };
    create({"--extra-arg=one"});
    quorvelctl_.run({"open", "Work"});
    ASSERT_TRUE(waitUntil([&] { return quorvelctl_.log("Work") == "started one\n"; }));
    write(quorvelctl_.data("Work") / "file", "mine");
    EXPECT_THAT(create({"--extra-arg=two"}), HasSubstr("“Work” already exists"));
    EXPECT_EQ(create({"--extra-arg=two", "--replace"}), wrapper_.string() + "\n");
    EXPECT_TRUE(quorvelctl_.isListedAsRunning("Work"));
    EXPECT_EQ(quorvelctl_.run({"open", "Work"}), "") << "not started a second time";
    EXPECT_EQ(quorvelctl_.log("Work"), "started one\n");
    EXPECT_EQ(read(quorvelctl_.data("Work") / "file"), "mine");
    EXPECT_EQ(quorvelctl_.json({"show", "Work"})["config"]["extraArgs"],
              nlohmann::json::array({"two"}));
}

} // namespace
} // namespace quorvel
