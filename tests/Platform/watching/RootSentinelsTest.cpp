#include "Platform/watching/RootSentinels_linux.h"
#include "tests/support/InotifyLimit.h"
#include "tests/support/TemporaryHome.h"

#include <gmock/gmock.h>

namespace quorvel {
namespace {

using namespace testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
namespace fs = std::filesystem;

class RootSentinelsTest : public ::testing::Test {
protected:
    [[nodiscard]] std::string at(const char* path) const { return folder_ / path; }

    TemporaryFolder folder_;
};

TEST_F(RootSentinelsTest, NoticesARootThatAppearsDisappearsAndIsReplaced) {
    RootSentinels sentinels({at("root")});
    ASSERT_TRUE(sentinels.works());
    EXPECT_THAT(sentinels.takeChanged(), IsEmpty());
    fs::create_directory(at("root"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(0));
    fs::rename(at("root"), at("elsewhere"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(0));
    fs::rename(at("elsewhere"), at("root"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(0));
    fs::remove(at("root"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(0));
    EXPECT_THAT(sentinels.takeChanged(), IsEmpty()) << "each change is taken once";
}

TEST_F(RootSentinelsTest, NoticesAChangeOfAnyFolderOnTheWay) {
    fs::create_directories(at("a/b/root"));
    RootSentinels sentinels({at("a/b/root")});
    fs::rename(at("a"), at("aside"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(0));
    fs::create_directories(at("a"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(0));
    fs::create_directories(at("a/b"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(0)) << "the new \"a\" is watched";
    fs::create_directories(at("a/b/root"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(0)) << "and the new \"b\" in it";
}

TEST_F(RootSentinelsTest, NamesTheRootsThatChangedAndNoOther) {
    fs::create_directories(at("shared"));
    RootSentinels sentinels({at("shared/first"), at("second"), at("shared/third")});
    fs::create_directory(at("shared/third"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(2));
    fs::rename(at("shared"), at("gone"));
    EXPECT_THAT(sentinels.takeChanged(), ElementsAre(0, 2));
}

TEST_F(RootSentinelsTest, IgnoresOtherNamesAndWhatHappensInsideARoot) {
    fs::create_directory(at("root"));
    RootSentinels sentinels({at("root")});
    write(at("root/file"), "text");
    write(at("beside"), "text");
    fs::create_directory(at("root2"));
    EXPECT_THAT(sentinels.takeChanged(), IsEmpty());
}

TEST_F(RootSentinelsTest, ReportsThatTheSystemHasNoQueueLeft) {
    if (!holdsInChild([] { return limitInotify(InotifyLimit::instances, 0); })) {
        GTEST_SKIP() << "the system gives no limits of one's own";
    }
    EXPECT_TRUE(holdsInChild([&] {
        return limitInotify(InotifyLimit::instances, 0) && !RootSentinels({at("root")}).works();
    }));
}

} // namespace
} // namespace quorvel
