#include "tests/QuorvelApp/AppModelFixture.h"

#include <QSignalSpy>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Ne;

class AppModelCreationTest : public AppModelFixture {};

TEST_F(AppModelCreationTest, ANewCloneIsListedFoundAndLaunched) {
    stubbed.create = [&](const WrapperFactory::Request& request) {
        return addClone(request.displayName).bundleURL;
    };
    WrapperFactory::Request request;
    request.displayName = "Work";
    const InstanceRecord record = resultOf(model().createClone(request, true));
    EXPECT_EQ(record.bundleURL, folder / "Work.app");
    EXPECT_THAT(names(), ElementsAre("Work"));
    EXPECT_THAT(stubbed.workspace->opened, ElementsAre(folder / "Work.app"));
    EXPECT_THAT(stubbed.tasks->priorities, ElementsAre(TaskPriority::userInitiated));
    EXPECT_THAT(stubbed.workedOn, Each(Ne(QThread::currentThread())));
}

TEST_F(AppModelCreationTest, ANewCloneIsNotLaunchedUnasked) {
    stubbed.create = [&](const auto& request) { return addClone(request.displayName).bundleURL; };
    WrapperFactory::Request request;
    request.displayName = "Work";
    resultOf(model().createClone(request, false));
    EXPECT_THAT(stubbed.workspace->opened, IsEmpty());
}

TEST_F(AppModelCreationTest, ACloneOutsideTheSearchFoldersGetsARecordMadeFromItsRequest) {
    stubbed.create = [](const auto&) { return fs::path("/elsewhere/Work.app"); };
    WrapperFactory::Request request;
    request.kind = ShortcutKind::web;
    request.displayName = " Work ";
    request.targetApp = "/Applications/Notes.app";
    request.strategy = Strategy::wrapperIdentity;
    request.extraArgs = {"--a"};
    request.environment = {{"A", "1"}};
    request.registerAsBrowser = true;
    request.menuBarIcon = true;
    request.shareUserFolders = false;
    request.url = "example.com";
    const InstanceRecord record = resultOf(model().createClone(request, true));
    InstanceConfig expected;
    expected.displayName = " Work ";
    expected.bundleId = WrapperFactory::defaultBundleId(" Work ");
    expected.kind = ShortcutKind::web;
    expected.targetAppPath = "/Applications/Notes.app";
    expected.instanceHome = "~/QuorvelInstances/ Work ";
    expected.strategy = Strategy::wrapperIdentity;
    EXPECT_EQ(record.config.json(), expected.json());
    EXPECT_THAT(model().clones(), IsEmpty()) << "it is not added to the list";
    EXPECT_THAT(stubbed.workspace->opened, ElementsAre(fs::path("/elsewhere/Work.app")));
}

TEST_F(AppModelCreationTest, ASynthesisedRecordHasTheRequestsIdentifierAndHome) {
    stubbed.create = [](const auto&) { return fs::path("/elsewhere/Work.app"); };
    WrapperFactory::Request request;
    request.displayName = "Work";
    request.bundleId = "com.example.mine";
    request.instanceHome = "/data/work";
    const InstanceRecord record = resultOf(model().createClone(request, false));
    EXPECT_EQ(record.config.bundleId, "com.example.mine");
    EXPECT_EQ(record.config.instanceHome, "/data/work");
    EXPECT_EQ(record.config.targetAppPath, "");
}

TEST_F(AppModelCreationTest, AFailedCreationChangesNothingAndReachesTheCaller) {
    stubbed.create = [](const auto&) -> fs::path {
        throw WrapperFactory::FactoryError::emptyName();
    };
    QSignalSpy listed(&model(), &AppModel::clonesChanged);
    EXPECT_THROW((void)resultOf(model().createClone({}, true)), WrapperFactory::FactoryError);
    EXPECT_EQ(listed.count(), 0);
    EXPECT_FALSE(model().lastError());
    EXPECT_THAT(stubbed.workspace->opened, IsEmpty());
}

TEST_F(AppModelCreationTest, ACloneThatIsNotInTheMenuIsMadeAllTheSameAndTheUserIsTold) {
    stubbed.create = [&](const auto& request) { return addClone(request.displayName).bundleURL; };
    stubbed.creationWarnings = {"It is not in the menu.", "Another has its identifier."};
    WrapperFactory::Request request;
    request.displayName = "Work";
    EXPECT_EQ(resultOf(model().createClone(request, false)).bundleURL, folder / "Work.app");
    EXPECT_EQ(model().lastError(), "It is not in the menu.\nAnother has its identifier.");
}

} // namespace
} // namespace quorvel::testing
