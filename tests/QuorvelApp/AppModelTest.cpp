#include "LaunchKit/InstanceLauncher.h"
#include "Platform/windows/ActivationError.h"
#include "tests/QuorvelApp/AppModelFixture.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using ::testing::Each;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Ne;

const InstalledApp notes{
    .url = "/Applications/Notes.app", .name = "Notes", .bundleId = "com.example.Notes"};

class AppModelTest : public AppModelFixture {};

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

TEST_F(AppModelTest, RepairsTheMenuForTheListedClonesInTheBackground) {
    addClone("Home");
    addClone("Work");
    model().reload();
    model().repairMenu();
    EXPECT_TRUE(eventually([&] { return stubbed.clonesInMenu == 2; }));
    EXPECT_THAT(stubbed.tasks->priorities, ElementsAre(TaskPriority::utility));
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
