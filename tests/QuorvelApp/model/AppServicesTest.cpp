#include "QuorvelApp/model/AppServices.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/RequestCheck.h"
#include "LaunchKit/RunnerLocator.h"
#include "QuorvelApp/AppModel.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"

#include <QCoreApplication>
#include <QProcess>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using ::testing::EndsWith;
using ::testing::HasSubstr;

/// The real services in a throw-away home.
class AppServicesTest : public ::testing::Test {
protected:
    static WrapperFactory::Request request() {
        WrapperFactory::Request request;
        request.kind = ShortcutKind::web;
        request.displayName = "Work";
        request.url = "https://example.com";
        return request;
    }
    // The error's text; empty if creating succeeds.
    static std::string failure() {
        try {
            (void)AppServices::system().createWrapper(request(), {});
            return {};
        } catch (const std::exception& error) {
            return error.what();
        }
    }

    TemporaryHome home;
    fs::path wrapper = home / "Applications/Work.app";
};

TEST_F(AppServicesTest, MakesTheFolderOfClonesWhereItIsMissing) {
    EXPECT_EQ(failure(), "");
    EXPECT_TRUE(InstanceRegistry().record(wrapper));
}

TEST_F(AppServicesTest, SaysSoWhenTheFolderOfClonesCantBeMade) {
    write(home / "Applications", "a file of that name");
    EXPECT_EQ(failure(), "“Work.app” couldn’t be created: not a directory");
    EXPECT_EQ(read(home / "Applications"), "a file of that name");
}

TEST_F(AppServicesTest, SaysSoWhenTheFolderOfClonesIsReadOnly) {
    const TemporaryFolder folder;
    const ScopedEnvironment elsewhere("CFFIXED_USER_HOME", folder.path().string());
    // Where that user can reach it, since the build may be in a home that others can't enter.
    const auto runner = RunnerLocator::locate(ApplicationFolders::current());
    ASSERT_TRUE(runner);
    fs::create_directories(folder / ".build/release");
    fs::copy_file(*runner, folder / ".build/release/quorvel-runner");
    EXPECT_TRUE(asUnprivilegedUser(folder.path(), [&] {
        fs::current_path(folder.path());
        fs::create_directories(folder / "Applications");
        fs::permissions(folder / "Applications", fs::perms{0555});
        return failure() == "“Work.app” couldn’t be created: permission denied" &&
               fs::is_empty(folder / "Applications");
    }));
}

TEST_F(AppServicesTest, LeavesAnApplicationThatIsNotACloneAlone) {
    makeAppBundle(wrapper);
    const auto before = treeOf(wrapper);
    EXPECT_THAT(failure(), EndsWith("is not a clone; choose another name or folder for the new "
                                    "one."));
    EXPECT_EQ(treeOf(wrapper), before);
}

TEST_F(AppServicesTest, MakesACloneAgain) {
    makeWrapper(wrapper, minimalConfig());
    EXPECT_EQ(failure(), "");
    EXPECT_EQ(InstanceRegistry().record(wrapper)->config.url, "https://example.com");
}

TEST_F(AppServicesTest, ASnapIsProposedAsUnsupportedAndNotCloned) {
    const DesktopApps apps;
    apps.addProgram("thing", helperProgram());
    const InstalledApp snap{.url = apps.addEntry("s", "thing", "X-SnapInstanceName=thing\n"),
                            .name = "Thing",
                            .bundleId = "s.desktop"};
    AppModel model(AppServices::system());
    const SandboxInfo info = resultOf(model.sandboxInfo(snap));
    EXPECT_TRUE(info.sandboxed);
    EXPECT_EQ(info.strategy, Strategy::unsupported);
    EXPECT_THAT(info.reason, HasSubstr("“sudo snap install thing_2”"));
    WrapperFactory::Request request;
    request.targetApp = snap.url;
    request.displayName = "Work";
    try {
        (void)AppServices::system().createWrapper(request, {});
        FAIL() << "it was cloned";
    } catch (const PlatformError& error) {
        EXPECT_EQ(
            error.description(),
            "“s.desktop” couldn’t be cloned: it is a Snap, whose data stays in the user’s own "
            "home");
    }
    EXPECT_FALSE(fs::exists(wrapper));
}

TEST_F(AppServicesTest, LaunchingACloneThatIsGoneIsAnError) {
    AppModel model(AppServices::system());
    model.launch({.bundleURL = wrapper, .config = minimalConfig()});
    EXPECT_TRUE(eventually([&] { return model.lastError().has_value(); }));
    EXPECT_EQ(model.lastError(),
              "Couldn't launch: “Work.app” couldn’t be opened: no such file or directory");
}

// Runs only within the test below it, whose full disk it needs.
TEST(AppServicesTestFullDisk, DISABLED_Within) {
    WrapperFactory::Request request;
    request.kind = ShortcutKind::web;
    request.displayName = "Work";
    try {
        (void)AppServices::system().createWrapper(request, {});
        FAIL() << "the disk was not full";
    } catch (const PlatformError& error) {
        EXPECT_EQ(error.code(), std::errc::no_space_on_device);
        EXPECT_THAT(error.what(), EndsWith("no space left on device"));
    }
    EXPECT_NO_THROW(validateRequest(request, std::nullopt, {.existingClone = true}))
        << "once there is space, it may be created";
}

TEST_F(AppServicesTest, AFullDiskIsReportedAndTheCloneMayBeMadeLater) {
    fs::create_directories(home / "Applications");
    const QString folder = QString::fromStdString((home / "Applications").string());
    const QString mount = u"mount -t tmpfs -o size=16k none '%1'"_s.arg(folder);
    const auto inNamespace = [](const QString& command) {
        return QProcess::execute(u"unshare"_s, {u"-rm"_s, u"sh"_s, u"-c"_s, command});
    };
    if (inNamespace(mount) != 0) {
        GTEST_SKIP() << "mounting a small disk needs permission";
    }
    EXPECT_EQ(inNamespace(mount + u" && exec '%1' --gtest_also_run_disabled_tests "
                                  u"--gtest_filter=AppServicesTestFullDisk.*"_s.arg(
                                      QCoreApplication::applicationFilePath())),
              0);
}

} // namespace
} // namespace quorvel::testing
