#include "tests/QuorvelApp/WindowFixture.h"
#include "LaunchKit/InstanceConfig.h"

#include "LaunchKit/InstanceRecord.h"

#include <QMenu>
#include <QMenuBar>
#include <QTest>

#include <stdexcept>

namespace quorvel::testing {

WindowTest::WindowTest() = default;
WindowTest::~WindowTest() = default;

const InstanceRecord& WindowTest::addClone(const std::string& name) {
    InstanceConfig config = minimalConfig(name);
    config.bundleId = WrapperFactory::defaultBundleId(name);
    config.targetAppPath = "/Applications/Notes.app";
    return addClone(name, std::move(config));
}

const InstanceRecord& WindowTest::addClone(const std::string& fileName, InstanceConfig config) {
    const std::filesystem::path wrapper = makeWrapper(folder / (fileName + ".app"), config);
    added_.push_back(std::make_unique<InstanceRecord>(
        InstanceRecord{.bundleURL = wrapper, .config = std::move(config)}));
    return *added_.back();
}

std::filesystem::path WindowTest::addWrapper(const std::string& name) {
    return addClone(name).bundleURL;
}

std::size_t WindowTest::cloneCount() {
    return stubs.model().clones().size();
}

void WindowTest::select(const InstanceRecord& clone) {
    window->content().sidebar().select(clone.id());
}

void WindowTest::addApps() {
    for (const std::string name : {"Mail", "Notes", "Zoom"}) {
        stubs.installed.push_back(
            {.url = "/Applications/" + name + ".app", .name = name, .bundleId = name});
    }
}

MainWindow& WindowTest::open() {
    window = std::make_unique<MainWindow>(stubs.model(), updater, icons, panels);
    window->show();
    window->activateWindow(); // what has no focus gets no key
    EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    return *window;
}

NewCloneView& WindowTest::openSheet() {
    window->content().showNewClone();
    auto* sheet = window->findChildren<NewCloneView*>().constLast();
    EXPECT_TRUE(eventually([&] { return !stubs.model().catalogLoading(); }));
    EXPECT_TRUE(window->isActiveWindow()) << "nothing of the sheet is a window of its own";
    return *sheet;
}

NewCloneView& WindowTest::openSheetWith(const QString& app) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    choose(app);
    return sheet;
}

QAction* WindowTest::command(const QString& words) {
    for (const QAction* menu : window->menuBar()->actions()) {
        for (QAction* action : menu->menu()->actions()) {
            if (QString(action->text()).remove(u'&') == words) {
                return action;
            }
        }
    }
    throw std::runtime_error("no command " + words.toStdString());
}

QPoint WindowTest::middleOfTile(const QString& app) {
    auto* grid = window->findChild<AppGrid*>();
    const QModelIndexList found =
        grid->model()->match(grid->model()->index(0, 0), Qt::DisplayRole, app, 1, Qt::MatchExactly);
    return grid->visualRect(found.at(0)).center();
}

} // namespace quorvel::testing
