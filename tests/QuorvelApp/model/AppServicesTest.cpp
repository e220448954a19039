#include "QuorvelApp/model/AppServices.h"
#include "LaunchKit/Changes/RequestCheck.h"
#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/RunnerLocator.h"
#include "LaunchKit/Wrappers/WrapperNotes.h"
#include "Platform/files/FileReading.h"
#include "Platform/files/FileSystem.h"
#include "Platform/files/Folder.h"
#include "Platform/files/PropertyListFile.h"
#include "QuorvelApp/AppModel.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/support/AppBundles.h"
#include "tests/support/DesktopApps.h"
#include "tests/support/TemporaryHome.h"
#include "tests/support/UnprivilegedUser.h"
#include "tests/support/Waiting.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <array>
#include <chrono>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <vector>

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
    static std::string failure(const RequestPermissions& permissions = {}) {
        try {
            (void)AppServices::system().createWrapper(request(), permissions, {});
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

TEST_F(AppServicesTest, MakesACloneAgainOnlyWithPermission) {
    makeWrapper(wrapper, minimalConfig());
    EXPECT_THAT(failure(), HasSubstr("already exists at "));
    EXPECT_EQ(failure({.existingClone = true}), "");
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
        (void)AppServices::system().createWrapper(request, {}, {});
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

TEST_F(AppServicesTest, QuittingEndsTheQuestionToASite) {
    const fs::path program = home / "stand-in";
    write(program, "#!/bin/sh\n> \"$2/asked\"\nexec sleep 60\n");
    fs::permissions(program, fs::perms::owner_all);
    const ScopedEnvironment standIn("QUORVEL_SITE_PREVIEW", program.string());
    const AppServices services = AppServices::system();
    ASSERT_TRUE(services.previewSite);
    const auto asking =
        std::async(std::launch::async, [&] { return services.previewSite("a.test", home.path()); });
    EXPECT_TRUE(waitUntil([&] { return fs::exists(home / "asked"); }));
    *services.quitting = true;
    EXPECT_EQ(asking.wait_for(std::chrono::seconds(10)), std::future_status::ready);
}

// The commands that 20 programs run on one clone, each at once.
std::vector<std::unique_ptr<QProcess>> startOtherPrograms() {
    const std::array<QStringList, 3> commands{
        QStringList{u"create"_s, u"--kind"_s, u"web"_s, u"--name"_s, u"Work"_s, u"--url"_s,
                    u"https://other.test"_s, u"--replace"_s},
        QStringList{u"edit"_s, u"Work"_s, u"--url"_s, u"https://edited.test"_s, u"--hide-icon"_s},
        QStringList{u"delete"_s, u"Work"_s, u"--yes"_s}};
    std::vector<std::unique_ptr<QProcess>> programs;
    for (std::size_t number = 0; number < 20; ++number) {
        programs.push_back(std::make_unique<QProcess>());
        programs.back()->start(QStringLiteral(QUORVEL_CTL), commands.at(number % commands.size()));
    }
    return programs;
}

// Reads two files of one wrapper, even if another one takes its place meanwhile: only an edit
// writes this address, and it also hides the icon.
void expectWhole(const fs::path& wrapper) {
    constexpr std::size_t limit = 65536;
    const auto folder = Folder::open(wrapper);
    std::string config;
    std::string list;
    if (folder &&
        readFileIn(folder->descriptor(), "Contents/Resources/instance.json", limit, config) &&
        readFileIn(folder->descriptor(), "Contents/Info.plist", limit, list)) {
        EXPECT_EQ(config.find("edited.test") != std::string::npos,
                  list.find("LSUIElement") != std::string::npos)
            << config << list;
    }
}

TEST_F(AppServicesTest, BesideProgramsThatChangeTheSameCloneNothingHalfIsSeenOrLeft) {
    AppModel model(AppServices::system());
    QTimer looking;
    QObject::connect(&looking, &QTimer::timeout, [&] { expectWhole(wrapper); });
    looking.start(0);
    const auto programs = startOtherPrograms();
    const auto areAtWork = [&] {
        return std::any_of(programs.begin(), programs.end(), [](const auto& program) {
            return program->state() != QProcess::NotRunning;
        });
    };
    int made = 0;
    int removals = 0;
    for (int round = 0; round < 4 || areAtWork(); ++round) {
        try {
            (void)resultOf(model.createClone(request(), false, {.existingClone = true}));
            ++made;
        } catch (const Error&) {
            // another program was first
        }
        model.reload();
        EXPECT_LE(model.clones().size(), 1U);
        if (!model.clones().empty() && round % 2 == 0) {
            model.setLastError(std::nullopt);
            model.remove(model.clones().front(), false);
            EXPECT_THAT(model.lastError().value_or("no longer the one that was listed"),
                        HasSubstr("no longer the one that was listed"));
            ++removals;
        }
        QCoreApplication::processEvents();
    }
    EXPECT_GT(made, 0);
    EXPECT_GT(removals, 0);
    for (const auto& program : programs) {
        EXPECT_EQ(program->exitStatus(), QProcess::NormalExit);
        const QByteArray errors = program->readAllStandardError();
        EXPECT_TRUE(program->exitCode() == 0 || !errors.isEmpty());
    }
    model.reload();
    const auto clones = InstanceRegistry().list();
    EXPECT_EQ(directoryEntries(home / "Applications")->size(), clones.size());
    ASSERT_EQ(model.clones().size(), clones.size());
    for (const InstanceRecord& clone : clones) {
        EXPECT_EQ(clone.bundleURL, wrapper);
        const auto notes = WrapperNotes::read(clone.bundleURL);
        const auto list = readPropertyList(clone.bundleURL / "Contents/Info.plist");
        ASSERT_TRUE(notes && list);
        EXPECT_EQ(list->contains("LSUIElement"), notes->hidesIcon);
        EXPECT_EQ(clone.config.url == "https://edited.test", notes->hidesIcon) << "of one edit";
    }
}

// Runs only within the test below it, whose full disk it needs.
TEST(AppServicesTestFullDisk, DISABLED_Within) {
    WrapperFactory::Request request;
    request.kind = ShortcutKind::web;
    request.displayName = "Work";
    try {
        (void)AppServices::system().createWrapper(request, {}, {});
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
