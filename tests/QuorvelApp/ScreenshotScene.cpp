#include "tests/QuorvelApp/ScreenshotScene.h"

#include "LaunchKit/IconComposer.h"
#include "LaunchKit/Icons/IcnsWriter.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/panels/EditCloneView.h"
#include "tests/support/AppBundles.h"

#include <QApplication>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>

#include <array>
#include <cstdio>

namespace quorvel::testing {
namespace fs = std::filesystem;
namespace {

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

} // namespace

ScreenshotScene::ScreenshotScene(bool withClones) {
    makeApps();
    if (withClones) {
        makeClones();
    }
    window_.show();
    stubs_.workspace->setRunning(
        {"app.quorvel.instance.chat--work-", "app.quorvel.instance.code---client-a"});
    stubs_.model().reload();
}

void ScreenshotScene::select(const std::string& name) {
    content().sidebar().select((home_ / "Applications" / (name + ".app")).string());
}

QAction& ScreenshotScene::command(const QString& words) {
    for (QAction* action : cloneMenu().actions()) {
        if (QString(action->text()).remove(u'&') == words) {
            return *action;
        }
    }
    std::fprintf(stderr, "no command %s\n", qPrintable(words));
    std::exit(1);
}

fs::path ScreenshotScene::logOf(const std::string& name) const {
    return home_ / ("QuorvelInstances/" + name + "/quorvel-instance.log");
}

void ScreenshotScene::retarget(const std::string& clone, const std::string& app) {
    const fs::path wrapper = home_ / "Applications" / (clone + ".app");
    InstanceConfig config = InstanceRegistry().record(wrapper)->config;
    config.targetAppPath = (apps_ / (app + ".app")).string();
    makeWrapper(wrapper, config);
    stubs_.model().reload();
}

void ScreenshotScene::addData(const std::string& clone) {
    for (int file = 0; file < 40; ++file) {
        write(home_ / "QuorvelInstances" / clone / "Profile" / std::to_string(file),
              std::string(std::size_t{1} << 17U, 'x'));
    }
}

void ScreenshotScene::edit(const std::string& name) {
    select(name);
    command(QStringLiteral("Edit…")).trigger();
    (void)eventually([&] { return window_.findChild<EditCloneView*>() != nullptr; });
}

void ScreenshotScene::scrollToEnd() {
    auto* settings = window_.findChild<ConfigurationPane*>()->findChild<QScrollArea*>();
    settings->verticalScrollBar()->setValue(settings->verticalScrollBar()->maximum());
}

void ScreenshotScene::chooseApp(const std::string& name) {
    const auto* grid = window_.findChild<AppGrid*>();
    (void)eventually([&] { return grid->model()->rowCount() > 0; });
    testing::chooseApp(&window_, QString::fromStdString(name));
}

void ScreenshotScene::save(const QString& name, QMenu* menu) {
    // Icons and sandbox states come from other threads; a picture is taken once all is calm.
    (void)eventually([] { return false; }, std::chrono::milliseconds(250));
    QPixmap picture = window_.grab();
    if (menu != nullptr) {
        QPainter(&picture).drawPixmap(window_.mapFromGlobal(menu->pos()), menu->grab());
        menu->close();
    }
    const QString file =
        folder + u'/' + name + (dark ? QStringLiteral("-dark.png") : QStringLiteral("-light.png"));
    if (!picture.save(file)) {
        std::fprintf(stderr, "could not write %s\n", qPrintable(file));
        std::exit(1);
    }
}

void ScreenshotScene::makeApps() {
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

void ScreenshotScene::makeClone(InstanceConfig config, const QString& letter, const QColor& color,
                                const std::string& label) {
    config.bundleId = WrapperFactory::defaultBundleId(config.displayName);
    const fs::path wrapper = home_ / "Applications" / (config.displayName + ".app");
    makeWrapper(wrapper, config);
    writeIcon(wrapper / "Contents/Resources/AppIcon.icns", letter, color, label);
}

void ScreenshotScene::makeClones() {
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

} // namespace quorvel::testing
