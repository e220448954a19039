// Shows every state of the windows in a throw-away home and saves a picture of each.
// Usage: app_screenshots FOLDER
#include "LaunchKit/ClonesLock.h"
#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Icons/IcnsWriter.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/NewCloneView.h"
#include "QuorvelApp/app/MainWindow.h"
#include "QuorvelApp/library/Sidebar.h"
#include "QuorvelApp/model/SystemTranslator.h"
#include "QuorvelApp/panels/DuplicateView.h"
#include "QuorvelApp/panels/EditCloneView.h"
#include "QuorvelApp/theme/Appearance.h"
#include "QuorvelApp/widgets/ProgressSheet.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/QuorvelApp/WidgetLookup.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QDir>
#include <QFontDatabase>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QScrollArea>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTimer>

#include <array>
#include <cstdio>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;

struct Sample {
    std::string name;
    QColor color;
    bool sandboxed = false;
};

const std::vector<Sample> samples{{"Board", QColor(0x7B, 0x4B, 0xE8)},
                                  {"Browser", QColor(0xE0, 0x60, 0x38)},
                                  {"Calendar", QColor(0xD9, 0x3A, 0x3A), true},
                                  {"Chat", QColor(0x63, 0x62, 0xD4)},
                                  {"Code", QColor(0x2E, 0x93, 0x72)},
                                  {"Draw Pro Studio Edition", QColor(0xF2, 0x70, 0x1B)},
                                  {"Mail", QColor(0x3B, 0x90, 0xE8), true},
                                  {"Maps", QColor(0x44, 0xAC, 0x55), true},
                                  {"Music", QColor(0xD2, 0x42, 0x78), true},
                                  {"Notes", QColor(0xEF, 0xAF, 0x2F), true},
                                  {"Photos", QColor(0x24, 0xB3, 0x8D), true},
                                  {"Terminal", QColor(0x42, 0x47, 0x4E)}};

QImage tile(const QString& letter, const QColor& color) {
    QImage image(512, 512, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient ground(0, 0, 0, 512);
    ground.setColorAt(0, color.lighter(118));
    ground.setColorAt(1, color);
    painter.setBrush(ground);
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(QRect(8, 8, 496, 496), 112, 112);
    QFont font = QApplication::font();
    font.setPixelSize(230);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(image.rect(), Qt::AlignCenter, letter);
    return image;
}

void writeIcon(const fs::path& file, const QString& letter, const QColor& color,
               const std::string& label = {}) {
    fs::create_directories(file.parent_path());
    const QImage image = tile(letter, color);
    const std::array chunks{
        icnsChunk(image),
        icnsChunk(image.scaled(128, 128, Qt::KeepAspectRatio, Qt::SmoothTransformation)),
        icnsChunk(image.scaled(64, 64, Qt::KeepAspectRatio, Qt::SmoothTransformation))};
    write(file, icnsFile(chunks));
    if (!label.empty()) {
        IconComposer::compose(file, {.text = label, .colorHex = "#FFFFFF"}, file);
    }
}

/// A home with apps and clones, and the window on it.
class Scene {
public:
    explicit Scene(bool withClones) {
        makeApps();
        if (withClones) {
            makeClones();
        }
        window_.show();
        stubs_.workspace->setRunning(
            {"app.quorvel.instance.chat--work-", "app.quorvel.instance.code---client-a"});
        stubs_.model().reload();
    }

    StubbedModel& stubs() { return stubs_; }
    MainWindow& window() { return window_; }
    ContentView& content() { return window_.content(); }
    QPushButton& button(const QString& text) { return *visibleButton(&window_, text); }

    void select(const std::string& name) {
        content().sidebar().select((home_ / "Applications" / (name + ".app")).string());
    }

    /// The menu's command with these words.
    QAction& command(const QString& words) {
        for (QAction* action : cloneMenu().actions()) {
            if (QString(action->text()).remove(u'&') == words) {
                return *action;
            }
        }
        std::fprintf(stderr, "no command %s\n", qPrintable(words));
        std::exit(1);
    }

    QMenu& cloneMenu() { return *window_.menuBar()->actions().at(3)->menu(); }
    QMenu& contextMenu() { return *content().sidebar().findChild<QMenu*>(); }

    /// Where a clone keeps its log.
    [[nodiscard]] fs::path logOf(const std::string& name) const {
        return home_ / ("QuorvelInstances/" + name + "/quorvel-instance.log");
    }
    [[nodiscard]] fs::path clones() const { return home_ / "Applications"; }

    // Lets a clone be of one of the apps that are there.
    void retarget(const std::string& clone, const std::string& app) {
        const fs::path wrapper = home_ / "Applications" / (clone + ".app");
        InstanceConfig config = InstanceRegistry().record(wrapper)->config;
        config.targetAppPath = (apps_ / (app + ".app")).string();
        makeWrapper(wrapper, config);
        stubs_.model().reload();
    }

    void addData(const std::string& clone) {
        for (int file = 0; file < 40; ++file) {
            write(home_ / "QuorvelInstances" / clone / "Profile" / std::to_string(file),
                  std::string(std::size_t{1} << 17U, 'x'));
        }
    }

    void edit(const std::string& name) {
        select(name);
        command(QStringLiteral("Edit…")).trigger();
        (void)eventually([&] { return window_.findChild<EditCloneView*>() != nullptr; });
    }

    void scrollToEnd() {
        auto* settings = window_.findChild<ConfigurationPane*>()->findChild<QScrollArea*>();
        settings->verticalScrollBar()->setValue(settings->verticalScrollBar()->maximum());
    }

    void chooseApp(const std::string& name) {
        const auto* grid = window_.findChild<AppGrid*>();
        (void)eventually([&] { return grid->model()->rowCount() > 0; });
        testing::chooseApp(&window_, QString::fromStdString(name));
    }

    // With a menu that is open over the window.
    void save(const QString& name, QMenu* menu = nullptr) {
        // Icons and sandbox states come from other threads; a picture is taken once all is calm.
        (void)eventually([] { return false; }, std::chrono::milliseconds(250));
        QPixmap picture = window_.grab();
        if (menu != nullptr) {
            QPainter(&picture).drawPixmap(window_.mapFromGlobal(menu->pos()), menu->grab());
            menu->close();
        }
        const QString file = folder + u'/' + name +
                             (dark ? QStringLiteral("-dark.png") : QStringLiteral("-light.png"));
        if (!picture.save(file)) {
            std::fprintf(stderr, "could not write %s\n", qPrintable(file));
            std::exit(1);
        }
    }

    static inline QString folder{};
    static inline bool dark = false;

private:
    void makeApps() {
        for (const Sample& sample : samples) {
            const fs::path app = apps_ / (sample.name + ".app");
            makeScriptedAppBundle(app, "exit 0", {{"CFBundleIconFile", "AppIcon"}});
            writeIcon(app / "Contents/Resources/AppIcon.icns",
                      QString::fromStdString(sample.name.substr(0, 1)), sample.color);
            stubs_.installed.push_back(
                {.url = app, .name = sample.name, .bundleId = "com.example." + sample.name});
            if (sample.sandboxed) {
                stubs_.sandboxed.insert(app.string());
            }
        }
    }

    void makeClone(InstanceConfig config, const QString& letter, const QColor& color,
                   const std::string& label = {}) {
        config.bundleId = WrapperFactory::defaultBundleId(config.displayName);
        const fs::path wrapper = home_ / "Applications" / (config.displayName + ".app");
        makeWrapper(wrapper, config);
        writeIcon(wrapper / "Contents/Resources/AppIcon.icns", letter, color, label);
    }

    void makeClones() {
        InstanceConfig work = minimalConfig("Chat (Work)");
        work.targetAppPath = "/Applications/Chat.app";
        work.extraArgs = {"--user-data-dir={{instanceHome}}/QuorvelData"};
        work.environment = {{"LANG", "de_DE.UTF-8"}, {"TZ", "Europe/Berlin"}};
        makeClone(work, QStringLiteral("C"), samples[3].color, "WORK");
        write(home_ / "QuorvelInstances/Chat (Work)/Downloads/file", "x");
        InstanceConfig family = minimalConfig("Chat (Family)");
        family.targetAppPath = "/Applications/Chat.app";
        makeClone(family, QStringLiteral("C"), samples[3].color, "FAM");
        InstanceConfig code = minimalConfig("Code – Client A");
        code.targetAppPath = "/Applications/Code.app";
        makeClone(code, QStringLiteral("C"), samples[4].color);
        InstanceConfig mail = minimalConfig("Mail.Example.Org");
        mail.kind = ShortcutKind::web;
        mail.url = "https://mail.example.org";
        makeClone(mail, QStringLiteral("M"), samples[6].color);
        InstanceConfig build = minimalConfig("Nightly build");
        build.kind = ShortcutKind::command;
        build.commandPath = "/usr/local/bin/build";
        build.commandArgs = {"--all"};
        makeClone(build, QStringLiteral("T"), samples[11].color);
        InstanceConfig tax = minimalConfig("Tax 2026");
        tax.kind = ShortcutKind::file;
        tax.openPath = "~/Documents/Tax 2026";
        makeClone(tax, QStringLiteral("N"), samples[9].color);
    }

    TemporaryHome home_;
    TemporaryFolder folder_;
    fs::path apps_ = folder_ / "Applications";
    StubbedModel stubs_{home_ / "Applications"};
    UpdaterController updater_;
    IconLoader icons_{std::make_shared<ThreadPoolTasks>()};
    MainWindow window_{stubs_.model(), updater_, icons_};
};

void showMainWindow() {
    Scene scene(true);
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
    Scene scene(true);
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
    Scene scene(true);
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
    Scene scene(true);
    scene.select("Chat (Work)");
    const InstanceRecord clone = scene.stubs().model().clones().at(1);
    Q_EMIT scene.content().changes().stillRunning(clone, 3);
    scene.save(QStringLiteral("dialog-force"));
}

void showEmptyState() {
    Scene scene(false);
    scene.save(QStringLiteral("main-empty"));
}

void showNewClone() {
    Scene scene(true);
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
    Scene scene(true);
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
    Scene scene(true);
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
    Scene scene(true);
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
    Scene scene(true);
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
    Scene::folder = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(Scene::folder);
    for (const bool dark : {false, true}) {
        Scene::dark = dark;
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
    return quorvel::testing::run(argc, argv);
}
