#include "tests/QuorvelApp/WindowFixture.h"

#include <QTest>

namespace quorvel::testing {

InstanceRecord WindowTest::addClone(const std::string& name) {
    InstanceConfig config = minimalConfig(name);
    config.bundleId = WrapperFactory::defaultBundleId(name);
    config.targetAppPath = "/Applications/Notes.app";
    return addClone(name, std::move(config));
}

InstanceRecord WindowTest::addClone(const std::string& fileName, InstanceConfig config) {
    const std::filesystem::path wrapper = makeWrapper(folder / (fileName + ".app"), config);
    return {.bundleURL = wrapper, .config = std::move(config)};
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
    return *sheet;
}

NewCloneView& WindowTest::openSheetWith(const QString& app) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    choose(app);
    return sheet;
}

void WindowTest::choose(const QString& app) {
    auto* grid = window->findChild<AppGrid*>();
    for (int row = 0; row < grid->model()->rowCount(); ++row) {
        if (grid->model()->index(row, 0).data() == app) {
            grid->setCurrentIndex(grid->model()->index(row, 0));
        }
    }
}

} // namespace quorvel::testing
