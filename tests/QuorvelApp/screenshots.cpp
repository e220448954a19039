// Shows every state of the windows in a throw-away home and saves a picture of each.
// Usage: app_screenshots FOLDER
#include "Base/Error.h"
#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/RunnerLocator.h"
#include "QuorvelApp/NewCloneView.h"
#include "QuorvelApp/model/SystemTranslator.h"
#include "QuorvelApp/panels/DuplicateView.h"
#include "QuorvelApp/panels/EditCloneView.h"
#include "QuorvelApp/theme/Appearance.h"
#include "QuorvelApp/widgets/ProgressSheet.h"
#include "tests/QuorvelApp/ScreenshotScene.h"

#include <QApplication>
#include <QDir>
#include <QFontDatabase>
#include <QLineEdit>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTimer>

#include <cstdio>

namespace quorvel::testing {
namespace {

void showMainWindow() {
    ScreenshotScene scene(true);
    scene.save(QStringLiteral("main-placeholder"));
    scene.select("Chat (Work)");
    scene.save(QStringLiteral("main-window"));
    scene.button(QStringLiteral("Delete")).click();
    scene.save(QStringLiteral("dialog-delete"));
    scene.button(QStringLiteral("Cancel")).click();
    scene.button(QStringLiteral("Move files to shared folders")).click();
    scene.save(QStringLiteral("dialog-move-files"));
    scene.button(QStringLiteral("Cancel")).click();
    scene.stubs().model().setLastError("Couldn't launch: “Chat (Work).app” couldn’t be opened: "
                                       "permission denied");
    scene.save(QStringLiteral("alert-error"));
    scene.button(QStringLiteral("OK")).click();
    scene.stubs().model().setStatusMessage("Moved 3 from Downloads into your shared folders. "
                                           "“Chat (Work)” now saves there.");
    scene.save(QStringLiteral("alert-done"));
    scene.button(QStringLiteral("OK")).click();
    scene.select("Nightly build");
    scene.save(QStringLiteral("main-command"));
}

void showMenus() {
    ScreenshotScene scene(true);
    scene.select("Chat (Work)");
    QMenuBar* bar = scene.window().menuBar();
    const QPoint below = bar->actionGeometry(scene.cloneMenu().menuAction()).bottomLeft();
    scene.cloneMenu().popup(bar->mapToGlobal(below));
    scene.save(QStringLiteral("menu-clone"), &scene.cloneMenu());
    scene.contextMenu().popup(scene.content().sidebar().mapToGlobal(QPoint(120, 60)));
    scene.contextMenu().setActiveAction(&scene.command(QStringLiteral("Rename…")));
    scene.save(QStringLiteral("menu-context"), &scene.contextMenu());
    scene.command(QStringLiteral("Rename…")).trigger();
    scene.save(QStringLiteral("clone-rename"));
}

void showChanges() {
    ScreenshotScene scene(true);
    scene.select("Chat (Work)");
    std::string log;
    for (int number = 0; number < 60; ++number) {
        log += "[" + std::to_string(4100 + number) + "] connection to chat.example.org:443 " +
               (number % 9 == 4 ? "failed: \x1b[31mtimed out\x1b[0m, trying again in 5 s; what was "
                                  "not sent is kept until then\n"
                                : "is up\n");
    }
    write(scene.logOf("Chat (Work)"), log);
    scene.command(QStringLiteral("Show Log")).trigger();
    scene.save(QStringLiteral("clone-log"));
    scene.button(QStringLiteral("Close")).click();
    scene.select("Tax 2026");
    scene.select("Nightly build");
    scene.command(QStringLiteral("Show Log")).trigger();
    scene.save(QStringLiteral("clone-log-empty"));
    scene.button(QStringLiteral("Close")).click();
    auto lock = lockClones(scene.clones());
    scene.command(QStringLiteral("Refresh Wrappers")).trigger();
    (void)eventually([&] { return scene.window().findChild<ProgressSheet*>() != nullptr; });
    auto* progress = scene.window().findChild<ProgressSheet*>();
    progress->findChild<QTimer*>()->stop();
    progress->setProgress(2, 6);
    progress->setText(QStringLiteral("2 of 6"));
    scene.save(QStringLiteral("clone-refresh"));
    lock.reset();
    (void)eventually([&] { return scene.stubs().model().lastError().has_value(); });
    scene.save(QStringLiteral("clone-refreshed"));
    scene.button(QStringLiteral("OK")).click();
}

void showForceQuestion() {
    ScreenshotScene scene(true);
    scene.select("Chat (Work)");
    const InstanceRecord clone = scene.stubs().model().clones().at(1);
    Q_EMIT scene.content().changes().stillRunning(clone, 3);
    scene.save(QStringLiteral("dialog-force"));
}

void showEmptyState() {
    ScreenshotScene scene(false);
    scene.save(QStringLiteral("main-empty"));
}

void showNewClone() {
    ScreenshotScene scene(true);
    scene.select("Chat (Work)");
    scene.content().showNewClone();
    scene.save(QStringLiteral("new-app"));
    scene.chooseApp("Chat");
    scene.save(QStringLiteral("new-app-selected"));
    scene.stubs().tasks->holding = true;
    scene.stubs().probe = [] {
        return ProbeResult{.recommendedStrategy = Strategy::containerRedirect};
    };
    scene.button(QStringLiteral("Auto-detect")).click();
    scene.save(QStringLiteral("new-app-detecting"));
    scene.stubs().tasks->release();
    scene.save(QStringLiteral("new-app-detected"));
    scene.chooseApp("Mail");
    scene.save(QStringLiteral("new-app-sandboxed"));
    scene.button(QStringLiteral("Advanced options")).click();
    scene.save(QStringLiteral("new-app-advanced"));
    scene.scrollToEnd();
    scene.save(QStringLiteral("new-app-advanced-scrolled"));
    scene.stubs().tasks->holding = true;
    scene.button(QStringLiteral("Create Shortcut")).click();
    scene.save(QStringLiteral("new-app-creating"));
}

void showOtherKinds() {
    ScreenshotScene scene(true);
    scene.content().showNewClone();
    scene.button(QStringLiteral("Web App")).click();
    scene.save(QStringLiteral("new-web"));
    fieldNamed(&scene.window(), QStringLiteral("Website URL"))
        ->setText(QStringLiteral("www.mail.example.org"));
    scene.save(QStringLiteral("new-web-filled"));
    scene.button(QStringLiteral("File / Folder")).click();
    scene.save(QStringLiteral("new-file"));
    scene.button(QStringLiteral("Command")).click();
    scene.save(QStringLiteral("new-command"));
}

void showEditing() {
    ScreenshotScene scene(true);
    scene.retarget("Chat (Work)", "Chat");
    for (const std::string name :
         {"Chat (Work)", "Mail.Example.Org", "Tax 2026", "Nightly build"}) {
        const QString picture =
            QStringLiteral("edit-") + QString::fromStdString(name)
                                          .section(QRegularExpression(QStringLiteral("\\W")), 0, 0)
                                          .toLower();
        scene.edit(name);
        scene.save(picture);
        scene.button(QStringLiteral("Advanced options")).click();
        scene.save(picture + QStringLiteral("-advanced"));
        if (name == "Chat (Work)") {
            scene.scrollToEnd();
            scene.save(picture + QStringLiteral("-scrolled"));
            const QSize usual = scene.window().size();
            scene.window().resize(720, 460);
            scene.save(picture + QStringLiteral("-small"));
            scene.window().resize(1100, 960);
            scene.save(picture + QStringLiteral("-tall"));
            scene.window().resize(usual);
        }
        scene.button(QStringLiteral("Cancel")).click();
        (void)eventually([&] { return scene.window().findChild<EditCloneView*>() == nullptr; });
    }
}

void showDuplicating() {
    ScreenshotScene scene(true);
    scene.retarget("Chat (Work)", "Chat");
    scene.addData("Chat (Work)");
    scene.select("Chat (Work)");
    scene.command(QStringLiteral("Duplicate…")).trigger();
    scene.save(QStringLiteral("duplicate"));
    const QSize usual = scene.window().size();
    scene.window().resize(640, 420);
    scene.save(QStringLiteral("duplicate-small"));
    scene.window().resize(usual);
    scene.window().findChild<DuplicateView*>()->findChild<QCheckBox*>()->setChecked(true);
    scene.stubs().tasks->holding = true;
    scene.button(QStringLiteral("Duplicate")).click();
    scene.save(QStringLiteral("duplicate-starting"));
    auto* progress = scene.window().findChild<ProgressSheet*>();
    progress->setProgress(412, 1000);
    progress->setText(QStringLiteral("8231 of 20012 items, 512.3 MB of 1.2 GB"));
    scene.save(QStringLiteral("duplicate-progress"));
    scene.stubs().tasks->release();
    (void)eventually([&] { return scene.stubs().model().statusMessage().has_value(); });
    scene.save(QStringLiteral("duplicate-result"));
}

void showSeed() {
    ScreenshotScene scene(true);
    scene.content().showNewClone();
    scene.chooseApp("Chat");
    scene.button(QStringLiteral("Advanced options")).click();
    (void)eventually([] { return false; }, std::chrono::milliseconds(100));
    scene.window().findChild<NewCloneView*>()->session().edit(
        [](NewCloneForm& form) { form.canSeed = true; });
    scene.save(QStringLiteral("new-app-seed"));
}

int run(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "Usage: %s FOLDER\n", argv[0]);
        return 2;
    }
    // The window makes clones as it does for the user.
    if (!RunnerLocator::locate(ApplicationFolders::current())) {
        throw Error("There is no " + std::string(RunnerLocator::runnerName) +
                    " beside this program. Build it first.");
    }
    ScreenshotScene::folder = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(ScreenshotScene::folder);
    for (const bool dark : {false, true}) {
        ScreenshotScene::dark = dark;
        Appearance::apply(dark ? ColorScheme::dark : ColorScheme::light);
        showMainWindow();
        showMenus();
        showChanges();
        showForceQuestion();
        showEmptyState();
        showNewClone();
        showOtherKinds();
        showEditing();
        showDuplicating();
        showSeed();
    }
    return 0;
}

} // namespace
} // namespace quorvel::testing

int main(int argc, char** argv) {
    QStandardPaths::setTestModeEnabled(true);
    QApplication application(argc, argv);
    // A plain X server has no font settings; these are those of a usual desktop.
    if (QFontDatabase::families().contains(QStringLiteral("Inter"))) {
        QApplication::setFont(QFont(QStringLiteral("Inter"), 10));
    }
    quorvel::SystemTranslator words;
    QApplication::installTranslator(&words);
    const quorvel::Appearance appearance;
    try {
        return quorvel::testing::run(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
