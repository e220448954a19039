#include "LaunchKit/HomeLock.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/WindowWord.h"
#include "Platform/desktop/ActivationError.h"
#include "Platform/desktop/MenuEntry.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <QCoreApplication>
#include <QSignalSpy>

#include <gmock/gmock.h>

#include <algorithm>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Ne;
using ::testing::StartsWith;

const InstalledApp notes{
    .url = "/Applications/Notes.app", .name = "Notes", .bundleId = "com.example.Notes"};

class AppModelTest : public ::testing::Test {
protected:
    InstanceRecord addClone(const std::string& name, ShortcutKind kind = ShortcutKind::app) {
        InstanceConfig config = minimalConfig(name);
        config.kind = kind;
        config.bundleId = WrapperFactory::defaultBundleId(name);
        makeWrapper(folder / (name + ".app"), config);
        return {.bundleURL = folder / (name + ".app"), .config = config};
    }

    std::vector<std::string> names() {
        std::vector<std::string> result;
        for (const InstanceRecord& record : model().clones()) {
            result.push_back(record.config.displayName);
        }
        return result;
    }

    AppModel& model() { return stubbed.model(); }

    TemporaryHome home;
    fs::path folder = home / "Applications";
    StubbedModel stubbed{folder};
};

TEST_F(AppModelTest, BeginsEmptyAndLooksAtNothing) {
    addClone("Work");
    EXPECT_THAT(model().clones(), IsEmpty());
    EXPECT_THAT(model().catalog(), IsEmpty());
    EXPECT_FALSE(model().catalogLoading());
    EXPECT_FALSE(model().lastError());
    EXPECT_FALSE(model().statusMessage());
    EXPECT_FALSE(model().startNewCloneRequested());
    EXPECT_EQ(stubbed.workspace->snapshots, 0);
    EXPECT_THAT(stubbed.tasks->priorities, IsEmpty());
}

TEST_F(AppModelTest, ReloadListsTheClonesAndThenWhatRuns) {
    addClone("Work");
    addClone("Home");
    stubbed.workspace->setRunning({"app.quorvel.instance.work", "com.other"});
    std::vector<std::string> order;
    QObject::connect(&model(), &AppModel::clonesChanged, &model(),
                     [&] { order.push_back("clones"); });
    QObject::connect(&model(), &AppModel::runningBundleIdsChanged, &model(),
                     [&] { order.push_back("running"); });
    model().reload();
    EXPECT_THAT(names(), ElementsAre("Home", "Work"));
    EXPECT_THAT(model().runningBundleIds(), ElementsAre("app.quorvel.instance.work"));
    EXPECT_THAT(order, ElementsAre("clones", "running"));
    EXPECT_EQ(stubbed.workspace->snapshots, 1) << "one look serves all clones";
}

TEST_F(AppModelTest, ARunningTargetDoesNotMakeItsCloneRun) {
    addClone("Work");
    stubbed.workspace->setRunning({"com.example.Notes"});
    model().reload();
    EXPECT_THAT(model().runningBundleIds(), IsEmpty());
}

TEST_F(AppModelTest, LoadingTheCatalogTwiceInARowScansOnce) {
    stubbed.installed = {notes};
    model().loadCatalog();
    model().loadCatalog();
    EXPECT_TRUE(model().catalogLoading());
    ASSERT_TRUE(eventually([&] { return !model().catalogLoading(); }));
    EXPECT_EQ(stubbed.scans, 1);
    EXPECT_THAT(model().catalog(), ElementsAre(notes));
    EXPECT_THAT(stubbed.tasks->priorities, ElementsAre(TaskPriority::userInitiated));
    EXPECT_THAT(stubbed.workedOn, Each(Ne(QThread::currentThread())));
}

TEST_F(AppModelTest, TheCatalogIsThereBeforeTheScanCountsAsOver) {
    stubbed.installed = {notes};
    std::size_t sizeAtEnd = 0;
    QObject::connect(&model(), &AppModel::catalogLoadingChanged, &model(),
                     [&] { sizeAtEnd = model().catalogLoading() ? 0 : model().catalog().size(); });
    model().loadCatalog();
    ASSERT_TRUE(eventually([&] { return !model().catalogLoading(); }));
    EXPECT_EQ(sizeAtEnd, 1U);
}

TEST_F(AppModelTest, AFinishedCatalogScanMayBeRepeated) {
    for (int round = 1; round <= 2; ++round) {
        model().loadCatalog();
        ASSERT_TRUE(eventually([&] { return !model().catalogLoading(); }));
        EXPECT_EQ(stubbed.scans, round);
    }
}

TEST_F(AppModelTest, AFailedCatalogScanIsReportedAndMayBeRepeated) {
    stubbed.installed = {notes};
    stubbed.scanError = "out of memory";
    model().loadCatalog();
    ASSERT_TRUE(eventually([&] { return !model().catalogLoading(); }));
    EXPECT_EQ(model().lastError(), "Couldn't scan your apps: out of memory");
    EXPECT_THAT(model().catalog(), IsEmpty());
    stubbed.scanError.reset();
    model().loadCatalog();
    ASSERT_TRUE(eventually([&] { return !model().catalogLoading(); }));
    EXPECT_THAT(model().catalog(), ElementsAre(notes));
}

TEST_F(AppModelTest, ASandboxStatusIsFoundOutAtUtilityPriorityAndKept) {
    stubbed.sandboxed = {notes.url.string()};
    resultOf(model().ensureSandboxStatus(notes));
    EXPECT_TRUE(model().sandboxStatus().at("/Applications/Notes.app"));
    EXPECT_THAT(stubbed.tasks->priorities, ElementsAre(TaskPriority::utility));
    EXPECT_THAT(stubbed.workedOn, Each(Ne(QThread::currentThread())));
    resultOf(model().ensureSandboxStatus(notes));
    EXPECT_EQ(stubbed.tasks->priorities.size(), 1U) << "no work for what is known";
}

TEST_F(AppModelTest, TwoQuestionsAtOnceForOneSandboxStatusBothEnd) {
    const auto first = model().ensureSandboxStatus(notes);
    const auto second = model().ensureSandboxStatus(notes);
    resultOf(first);
    resultOf(second);
    EXPECT_FALSE(model().sandboxStatus().at("/Applications/Notes.app"));
}

TEST_F(AppModelTest, AnUnreadableAppCountsAsNotSandboxed) {
    stubbed.unreadable = {notes.url.string()};
    resultOf(model().ensureSandboxStatus(notes));
    EXPECT_FALSE(model().sandboxStatus().at("/Applications/Notes.app"));
    EXPECT_FALSE(resultOf(model().sandboxInfo(notes)).sandboxed);
}

TEST_F(AppModelTest, AnAppWhoseReadingFailsCountsAsNotSandboxed) {
    stubbed.poisoned = notes.url;
    resultOf(model().ensureSandboxStatus(notes));
    EXPECT_FALSE(model().sandboxStatus().at("/Applications/Notes.app"));
    EXPECT_FALSE(resultOf(model().sandboxInfo(notes)).sandboxed);
}

TEST_F(AppModelTest, TheProposalForAFreeAppIsHomeOverride) {
    const SandboxInfo info = resultOf(model().sandboxInfo(notes));
    EXPECT_FALSE(info.sandboxed);
    EXPECT_EQ(info.strategy, Strategy::homeOverride);
    EXPECT_EQ(info.reason, "\u201cNotes\u201d isn\u2019t sandboxed \u2192 Home override (A), the "
                           "reliable path most apps use.");
    EXPECT_THAT(stubbed.tasks->priorities, ElementsAre(TaskPriority::userInitiated));
    EXPECT_THAT(model().sandboxStatus(), IsEmpty()) << "the answer is not kept";
}

TEST_F(AppModelTest, TheProposalForASandboxedAppSaysThatDataIsShared) {
    stubbed.sandboxed = {notes.url.string()};
    const SandboxInfo info = resultOf(model().sandboxInfo(notes));
    EXPECT_TRUE(info.sandboxed);
    EXPECT_EQ(info.strategy, Strategy::containerRedirect);
    EXPECT_EQ(info.reason,
              "\u201cNotes\u201d is sandboxed. macOS confines it to a shared, protected container "
              "that can't be redirected, so two copies would share the same data and account. "
              "Quorvel can still make a separate Dock launcher, but it won't isolate the data.");
}

TEST_F(AppModelTest, DetectionMakesAProfileOfTheProbesResult) {
    stubbed.probe = [] {
        return ProbeResult{.singleton = SingletonTier::none,
                           .recommendedStrategy = Strategy::containerRedirect};
    };
    const AppProfile profile = resultOf(model().detectStrategy(notes));
    EXPECT_EQ(profile.strategy, Strategy::containerRedirect);
    EXPECT_EQ(profile.bundleId, "com.example.Notes");
    EXPECT_THAT(profile.verifiedOn, ElementsAre("macOS 14.5"));
    EXPECT_THAT(stubbed.tasks->priorities, ElementsAre(TaskPriority::userInitiated));
    EXPECT_THAT(stubbed.workedOn, Each(Ne(QThread::currentThread())));
}

TEST_F(AppModelTest, DetectionOfAnUnreadableAppFailsWithItsPath) {
    stubbed.unreadable = {notes.url.string()};
    try {
        (void)resultOf(model().detectStrategy(notes));
        FAIL() << "nothing was thrown";
    } catch (const WrapperFactory::FactoryError& error) {
        EXPECT_EQ(error.description(), "Not a readable .app: /Applications/Notes.app");
    }
}

TEST_F(AppModelTest, DetectionWithoutAProberFailsTheSameWay) {
    stubbed.probe = [] { return std::nullopt; };
    EXPECT_THROW((void)resultOf(model().detectStrategy(notes)), WrapperFactory::FactoryError);
}

TEST_F(AppModelTest, AProbesFailureComesThroughUnchanged) {
    stubbed.probe = []() -> std::optional<ProbeResult> {
        throw InstanceLauncher::LaunchError::unsupported("no");
    };
    EXPECT_THROW((void)resultOf(model().detectStrategy(notes)), InstanceLauncher::LaunchError);
    EXPECT_FALSE(model().lastError());
}

TEST_F(AppModelTest, SuggestsTheSecondNumberWithoutLookingWhenTheNameIsFree) {
    EXPECT_EQ(model().suggestedName(notes), "Notes (2)");
    addClone("Notes (2)");
    model().reload();
    EXPECT_EQ(model().suggestedName(notes), "Notes (2)");
}

TEST_F(AppModelTest, SuggestsTheFirstFreeNumberWhenTheNameIsTaken) {
    addClone("Notes");
    model().reload();
    EXPECT_EQ(model().suggestedName(notes), "Notes (2)");
    addClone("Notes (2)");
    model().reload();
    EXPECT_EQ(model().suggestedName(notes), "Notes (3)");
}

TEST_F(AppModelTest, LaunchingAnAppClonePreparesItsHomeAndOpensTheWrapper) {
    fs::create_directories(home / "Library/Keychains");
    fs::create_directories(home / "Downloads");
    const InstanceRecord record = addClone("Work");
    model().launch(record);
    EXPECT_TRUE(fs::is_symlink(home / "QuorvelInstances/Work/Library/Keychains"));
    EXPECT_TRUE(fs::is_symlink(home / "QuorvelInstances/Work/Downloads"));
    EXPECT_THAT(stubbed.workspace->opened, ElementsAre(record.bundleURL));
    EXPECT_TRUE(stubbed.workspace->activated);
}

TEST_F(AppModelTest, LaunchingACloneThatKeepsItsFoldersLinksOnlyTheKeychain) {
    fs::create_directories(home / "Library/Keychains");
    fs::create_directories(home / "Downloads");
    InstanceRecord record = addClone("Work");
    record.config.shareUserFolders = false;
    model().launch(record);
    EXPECT_TRUE(fs::is_symlink(home / "QuorvelInstances/Work/Library/Keychains"));
    EXPECT_FALSE(fs::exists(home / "QuorvelInstances/Work/Downloads"));
}

TEST_F(AppModelTest, LaunchingAnyOtherKindTouchesNoHome) {
    fs::create_directories(home / "Library/Keychains");
    fs::create_directories(home / "Downloads");
    for (const ShortcutKind kind : {ShortcutKind::web, ShortcutKind::file, ShortcutKind::command}) {
        const InstanceRecord record = addClone("Other", kind);
        model().launch(record);
        EXPECT_FALSE(fs::exists(home / "QuorvelInstances"));
        EXPECT_THAT(stubbed.workspace->opened, ElementsAre(record.bundleURL));
        EXPECT_TRUE(stubbed.workspace->activated);
        stubbed.workspace->opened.clear();
        stubbed.workspace->activated = false;
    }
}

TEST_F(AppModelTest, AfterALaunchTheRunningStateIsLookedAtEightTenthsOfASecondLater) {
    const InstanceRecord record = addClone("Work");
    model().reload();
    model().launch(record);
    ASSERT_TRUE(eventually([&] { return !stubbed.delayed.empty(); }));
    EXPECT_THAT(stubbed.delays, ElementsAre(std::chrono::milliseconds(800)));
    EXPECT_THAT(model().runningBundleIds(), IsEmpty());
    stubbed.workspace->setRunning({record.config.bundleId});
    stubbed.delayed.front()();
    EXPECT_TRUE(model().isRunning(record));
    EXPECT_FALSE(model().lastError());
}

TEST_F(AppModelTest, AFailedLaunchIsReportedAndStillLooksAgain) {
    stubbed.workspace->openError =
        PlatformError(std::make_error_code(std::errc::permission_denied), "/x/Work.app", "opened");
    model().launch(addClone("Work"));
    ASSERT_TRUE(eventually([&] { return !stubbed.delayed.empty(); }));
    EXPECT_EQ(model().lastError(),
              "Couldn't launch: " + stubbed.workspace->openError->description());
}

TEST_F(AppModelTest, ACloneThatRunsButStaysInTheBackgroundWasNotAFailedLaunch) {
    stubbed.workspace->openError = activationError(ActivationFailure::notAllowed, "/x/Work.app");
    model().launch(addClone("Work"));
    ASSERT_TRUE(eventually([&] { return !stubbed.delayed.empty(); }));
    EXPECT_EQ(model().lastError(), stubbed.workspace->openError->description());
}

TEST_F(AppModelTest, AWorkspaceThatThrowsIsReportedLikeAnAnswer) {
    stubbed.workspace->throwsOpenError = true;
    stubbed.workspace->openError =
        PlatformError(std::make_error_code(std::errc::permission_denied), "/x/Work.app", "opened");
    model().launch(addClone("Work"));
    EXPECT_EQ(model().lastError(),
              "Couldn't launch: " + stubbed.workspace->openError->description());
    EXPECT_EQ(stubbed.delayed.size(), 1U);
}

TEST_F(AppModelTest, AnAnswerOnAnotherThreadIsHandledOnTheMainThread) {
    stubbed.workspace->completesOnThread = true;
    QThread* handled = nullptr;
    QObject::connect(&model(), &AppModel::lastErrorChanged, &model(),
                     [&] { handled = QThread::currentThread(); });
    stubbed.workspace->openError =
        PlatformError(std::make_error_code(std::errc::permission_denied), "/x/Work.app", "opened");
    model().launch(addClone("Work"));
    EXPECT_EQ(handled, nullptr) << "the answer came on another thread, where nothing may be called";
    ASSERT_TRUE(eventually([&] { return handled != nullptr && !stubbed.delayed.empty(); }));
    EXPECT_EQ(handled, QCoreApplication::instance()->thread());
}

TEST_F(AppModelTest, ANewCloneIsListedFoundAndLaunched) {
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

TEST_F(AppModelTest, ANewCloneIsNotLaunchedUnasked) {
    stubbed.create = [&](const auto& request) { return addClone(request.displayName).bundleURL; };
    WrapperFactory::Request request;
    request.displayName = "Work";
    resultOf(model().createClone(request, false));
    EXPECT_THAT(stubbed.workspace->opened, IsEmpty());
}

TEST_F(AppModelTest, ACloneOutsideTheSearchFoldersGetsARecordMadeFromItsRequest) {
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

TEST_F(AppModelTest, ASynthesisedRecordHasTheRequestsIdentifierAndHome) {
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

TEST_F(AppModelTest, AFailedCreationChangesNothingAndReachesTheCaller) {
    stubbed.create = [](const auto&) -> fs::path {
        throw WrapperFactory::FactoryError::emptyName();
    };
    QSignalSpy listed(&model(), &AppModel::clonesChanged);
    EXPECT_THROW((void)resultOf(model().createClone({}, true)), WrapperFactory::FactoryError);
    EXPECT_EQ(listed.count(), 0);
    EXPECT_FALSE(model().lastError());
    EXPECT_THAT(stubbed.workspace->opened, IsEmpty());
}

TEST_F(AppModelTest, ACloneThatIsNotInTheMenuIsMadeAllTheSameAndTheUserIsTold) {
    stubbed.create = [&](const auto& request) { return addClone(request.displayName).bundleURL; };
    stubbed.creationWarning = "It is not in the menu.";
    WrapperFactory::Request request;
    request.displayName = "Work";
    EXPECT_EQ(resultOf(model().createClone(request, false)).bundleURL, folder / "Work.app");
    EXPECT_EQ(model().lastError(), "It is not in the menu.");
}

TEST_F(AppModelTest, RepairsTheMenuForTheListedClonesInTheBackground) {
    addClone("Home");
    addClone("Work");
    model().reload();
    model().repairMenu();
    EXPECT_TRUE(eventually([&] { return stubbed.clonesInMenu == 2; }));
    EXPECT_THAT(stubbed.tasks->priorities, ElementsAre(TaskPriority::utility));
}

TEST_F(AppModelTest, DeletingRemovesTheWrapperAndListsAgain) {
    addClone("Home");
    const InstanceRecord record = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    model().reload();
    model().remove(record, false);
    EXPECT_THAT(names(), ElementsAre("Home"));
    EXPECT_TRUE(fs::exists(home / "QuorvelInstances/Work/data"));
}

TEST_F(AppModelTest, DeletingWithdrawsFromTheMenuInTheBackground) {
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
    model().remove(record, false);
    EXPECT_FALSE(fs::exists(record.bundleURL));
    EXPECT_EQ(publishedMenuEntries().size(), 1U);
    stubbed.tasks->release();
    EXPECT_TRUE(eventually([] { return publishedMenuEntries().empty(); }));
}

TEST_F(AppModelTest, DeletingWithDataRemovesBoth) {
    const InstanceRecord record = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    model().reload();
    model().remove(record, true);
    EXPECT_THAT(model().clones(), IsEmpty());
    EXPECT_FALSE(fs::exists(home / "QuorvelInstances/Work"));
}

TEST_F(AppModelTest, AFailedDeletionIsReportedAndKeepsTheList) {
    addClone("Work");
    model().reload();
    InstanceRecord record = model().clones().front();
    // A wrapper whose removal is refused, for every user: it contains the user's home.
    record.bundleURL = home.path();
    model().remove(record, true);
    EXPECT_THAT(*model().lastError(), StartsWith("Couldn't delete: "));
    EXPECT_THAT(names(), ElementsAre("Work"));
}

TEST_F(AppModelTest, DataThatStaysIsReportedAndTheListIsNew) {
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

TEST_F(AppModelTest, AStaleRecordDeletesNothing) {
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

TEST_F(AppModelTest, MigrationMovesFilesSwitchesToSharingAndSaysHowMany) {
    InstanceRecord record = addClone("Work");
    record.config.shareUserFolders = false;
    makeWrapper(record.bundleURL, record.config);
    write(home / "QuorvelInstances/Work/Downloads/a", "a");
    write(home / "QuorvelInstances/Work/Downloads/b", "b");
    model().reload();
    resultOf(model().migrateSharedFolders(record));
    EXPECT_EQ(model().statusMessage(), "Moved 2 from Downloads into your shared folders. "
                                       "\u201cWork\u201d now saves there.");
    EXPECT_TRUE(model().clones().front().config.shareUserFolders);
    EXPECT_EQ(read(home / "Downloads/a"), "a");
    EXPECT_THAT(stubbed.tasks->priorities, ElementsAre(TaskPriority::userInitiated));
}

TEST_F(AppModelTest, MigrationNamesTheFoldersInTheirOwnOrder) {
    const InstanceRecord record = addClone("Work");
    write(home / "QuorvelInstances/Work/Desktop/a", "a");
    write(home / "QuorvelInstances/Work/Documents/b", "b");
    resultOf(model().migrateSharedFolders(record));
    EXPECT_EQ(model().statusMessage(),
              "Moved 1 from Documents, 1 from Desktop into your shared folders. "
              "\u201cWork\u201d now saves there.");
}

TEST_F(AppModelTest, NothingIsMigratedWhileATargetRunsInTheHome) {
    const InstanceRecord record = addClone("Work");
    const fs::path document = home / "QuorvelInstances/Work/Documents/a";
    write(document, "a");
    const std::optional<FileLock> running = lockHome(record.config);
    resultOf(model().migrateSharedFolders(record));
    EXPECT_EQ(model().lastError(), "Couldn't move the files: " + HomeInUse("Work").description());
    EXPECT_EQ(read(document), "a");
}

TEST_F(AppModelTest, AMigrationWithNothingToMoveSaysSo) {
    resultOf(model().migrateSharedFolders(addClone("Work")));
    EXPECT_EQ(model().statusMessage(),
              "\u201cWork\u201d now shares Downloads, Documents & Desktop with your Mac \u2014 "
              "nothing needed moving.");
    EXPECT_FALSE(model().lastError());
}

TEST_F(AppModelTest, AMigrationOfACloneThatCantBeChangedIsAnErrorWithWhatWasMoved) {
    InstanceRecord record = addClone("Work");
    record.config.shareUserFolders = false;
    fs::remove_all(record.bundleURL);
    write(home / "QuorvelInstances/Work/Downloads/a", "a");
    resultOf(model().migrateSharedFolders(record));
    EXPECT_FALSE(model().statusMessage());
    EXPECT_EQ(model().lastError(),
              "Moved 1 from Downloads into your shared folders. The clone at " +
                  record.bundleURL.string() +
                  " couldn’t be changed, so folder sharing is still off.");
    EXPECT_EQ(read(home / "Downloads/a"), "a");
}

TEST_F(AppModelTest, AMigrationThatHadToLeaveItemsNamesThemAndDoesNotShare) {
    InstanceRecord record = addClone("Work");
    record.config.shareUserFolders = false;
    makeWrapper(record.bundleURL, record.config);
    write(home / "QuorvelInstances/Work/Documents/fine", "f");
    for (const char* name : {"1", "2", "3", "4", "5", "6", "7"}) {
        write(home / "QuorvelInstances/Work/Downloads" / name, "x");
    }
    write(home / "Downloads", "a file in the way");
    model().reload();
    resultOf(model().migrateSharedFolders(record));
    EXPECT_FALSE(model().statusMessage());
    EXPECT_THAT(*model().lastError(),
                StartsWith("Moved 1 from Documents into your shared folders. Not everything could "
                           "be moved, so the clone still has folders of its own:\n“"));
    EXPECT_THAT(*model().lastError(),
                ::testing::EndsWith("” couldn’t be moved: not a directory\n… and 2 more"));
    EXPECT_FALSE(model().clones().front().config.shareUserFolders);
    EXPECT_EQ(read(home / "QuorvelInstances/Work/Downloads/7"), "x");
}

TEST_F(AppModelTest, AMigrationKeepsWhatAnotherProgramChanged) {
    InstanceRecord record = addClone("Work");
    record.config.shareUserFolders = false;
    InstanceConfig changed = record.config;
    changed.displayName = "Renamed";
    makeWrapper(record.bundleURL, changed);
    resultOf(model().migrateSharedFolders(record));
    EXPECT_THAT(names(), ElementsAre("Renamed"));
    EXPECT_TRUE(model().clones().front().config.shareUserFolders);
}

TEST_F(AppModelTest, MessagesStayUntilTheyAreReplaced) {
    model().setLastError("first");
    model().reload();
    EXPECT_EQ(model().lastError(), "first");
    model().setLastError(std::nullopt);
    EXPECT_FALSE(model().lastError());
}

TEST_F(AppModelTest, AFileManagerThatDoesNotAnswerIsReported) {
    const InstanceRecord record = addClone("Work");
    resultOf(model().reveal(record));
    EXPECT_THAT(stubbed.workspace->revealed, ElementsAre(record.bundleURL));
    stubbed.workspace->revealError =
        PlatformError(std::make_error_code(std::errc::timed_out), "/x/Work.app", "shown");
    resultOf(model().reveal(record));
    EXPECT_EQ(model().lastError(), stubbed.workspace->revealError->description());
}

TEST_F(AppModelTest, AWrapperThatIsGoneCantBeShown) {
    const InstanceRecord record = addClone("Work");
    fs::remove_all(record.bundleURL);
    resultOf(model().reveal(record));
    EXPECT_THAT(stubbed.workspace->revealed, IsEmpty());
    EXPECT_EQ(model().lastError(), "“Work.app” couldn’t be shown: no such file or directory");
}

TEST_F(AppModelTest, DeletingWhatIsGoneAlreadyListsAgain) {
    const InstanceRecord record = addClone("Work");
    write(home / "QuorvelInstances/Work/data", "x");
    model().reload();
    fs::remove_all(record.bundleURL);
    model().remove(record, true);
    EXPECT_FALSE(model().lastError());
    EXPECT_THAT(model().clones(), IsEmpty());
    EXPECT_FALSE(fs::exists(home / "QuorvelInstances/Work"));
}

TEST_F(AppModelTest, AModelThatIsGoneIsNotReachedByLateResults) {
    stubbed.tasks->holding = true;
    const auto late = model().ensureSandboxStatus(notes);
    stubbed.dropModel();
    stubbed.tasks->release();
    EXPECT_TRUE(eventually([&] { return late.isFinished(); }));
    EXPECT_TRUE(late.isCanceled());
}

TEST_F(AppModelTest, OsSignatureIsTheMajorAndMinorVersion) {
    EXPECT_EQ(AppModel::osSignature(StubWorkspace()), "macOS 14.5");
}

} // namespace
} // namespace quorvel::testing
