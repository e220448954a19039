#include "LaunchKit/Launching/WindowWord.h"
#include "Platform/entries/MenuEntry.h"
#include "tests/QuorvelApp/AppModelFixture.h"
#include "tests/support/UnprivilegedUser.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

class AppModelDeletionTest : public AppModelFixture {};

TEST_F(AppModelDeletionTest, DeletingRemovesTheWrapperAndListsAgain) {
    addClone("Home");
    const InstanceRecord record = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    model().reload();
    model().remove(record, false);
    EXPECT_THAT(names(), ElementsAre("Home"));
    EXPECT_TRUE(fs::exists(home / "QuorvelInstances/Work/data"));
}

TEST_F(AppModelDeletionTest, DeletingWithdrawsFromTheMenuInTheBackground) {
    if (!hasMenu()) {
        GTEST_SKIP() << "this system has none";
    }
    const InstanceRecord record = addClone("Work");
    const std::string identity = cloneIdentity(record.bundleURL);
    DesktopEntry entry{.type = "Application", .name = "Work", .exec = "/bin/true"};
    entry.cloneId = identity;
    const std::string word = windowWord(identity);
    publishMenuEntry({.word = word, .fileName = word + ".desktop", .entry = entry}, {});
    stubbed.tasks->holding = true;
    EXPECT_TRUE(model().remove(record, false));
    EXPECT_FALSE(fs::exists(record.bundleURL));
    EXPECT_EQ(publishedMenuEntries().size(), 1U);
    stubbed.tasks->release();
    EXPECT_TRUE(eventually([] { return publishedMenuEntries().empty(); }));
}

TEST_F(AppModelDeletionTest, DeletingWithDataRemovesBoth) {
    const InstanceRecord record = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    model().reload();
    model().remove(record, true);
    EXPECT_THAT(model().clones(), IsEmpty());
    EXPECT_FALSE(fs::exists(home / "QuorvelInstances/Work"));
}

TEST_F(AppModelDeletionTest, AFailedDeletionIsReportedAndKeepsTheList) {
    addClone("Work");
    model().reload();
    InstanceRecord record = model().clones().front();
    // A wrapper whose removal is refused, for every user: it contains the user's home.
    record.bundleURL = home.path();
    model().remove(record, true);
    EXPECT_THAT(*model().lastError(), StartsWith("Couldn't delete: "));
    EXPECT_THAT(names(), ElementsAre("Work"));
}

TEST_F(AppModelDeletionTest, DataThatStaysIsReportedAndTheListIsNew) {
    const TemporaryFolder place;
    EXPECT_TRUE(asUnprivilegedUser(place.path(), [&] {
        InstanceConfig config = minimalConfig();
        config.instanceHome = (place / "data").string();
        const InstanceRecord record{makeWrapper(place / "Work.app", config), config};
        write(place / "data/closed/file", "x");
        write(place / "data/file", "x");
        fs::permissions(place / "data/closed", fs::perms{0555});
        QSignalSpy listed(&model(), &AppModel::clonesChanged);
        model().remove(record, true);
        const std::string error = model().lastError().value_or("");
        return listed.count() == 1 && error.starts_with("Couldn't delete: ") &&
               error.find("1 item removed, 3 items left") != std::string::npos &&
               !fs::exists(record.bundleURL);
    }));
}

TEST_F(AppModelDeletionTest, AStaleRecordDeletesNothing) {
    const InstanceRecord record = addClone("Work");
    model().reload();
    InstanceConfig newer = record.config;
    newer.instanceHome = "~/QuorvelInstances/Newer";
    makeWrapper(record.bundleURL, newer);
    write(home / "QuorvelInstances/Work/data", "x");
    model().remove(record, true);
    EXPECT_THAT(model().lastError().value_or(""), StartsWith("Couldn't delete: "));
    EXPECT_TRUE(fs::exists(record.bundleURL));
    EXPECT_TRUE(fs::exists(home / "QuorvelInstances/Work/data"));
}

TEST_F(AppModelDeletionTest, DeletingWhatIsGoneAlreadyListsAgain) {
    const InstanceRecord record = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    model().reload();
    fs::remove_all(record.bundleURL);
    model().remove(record, true);
    EXPECT_FALSE(model().lastError());
    EXPECT_THAT(model().clones(), IsEmpty());
    EXPECT_FALSE(fs::exists(home / "QuorvelInstances/Work"));
}

} // namespace
} // namespace quorvel::testing
