#pragma once

#include "QuorvelApp/app/MainWindow.h"
#include "QuorvelApp/library/Sidebar.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/QuorvelApp/WidgetLookup.h"
#include "tests/support/TemporaryHome.h"

#include <QMenu>
#include <QMenuBar>

#include <filesystem>
#include <string>

namespace quorvel::testing {

/// A home with apps and clones, and the window on it.
class ScreenshotScene {
public:
    explicit ScreenshotScene(bool withClones);

    StubbedModel& stubs() { return stubs_; }
    MainWindow& window() { return window_; }
    ContentView& content() { return window_.content(); }
    QPushButton& button(const QString& text) { return *visibleButton(&window_, text); }

    void select(const std::string& name);

    /// The menu's command with these words.
    QAction& command(const QString& words);

    QMenu& cloneMenu() { return *window_.menuBar()->actions().at(3)->menu(); }
    QMenu& contextMenu() { return *content().sidebar().findChild<QMenu*>(); }

    /// Where a clone keeps its log.
    [[nodiscard]] std::filesystem::path logOf(const std::string& name) const;
    [[nodiscard]] std::filesystem::path clones() const { return home_ / "Applications"; }

    // Lets a clone be of one of the apps that are there.
    void retarget(const std::string& clone, const std::string& app);

    void addData(const std::string& clone);

    void edit(const std::string& name);

    void scrollToEnd();

    void chooseApp(const std::string& name);

    // With a menu that is open over the window.
    void save(const QString& name, QMenu* menu = nullptr);

    static inline QString folder{};
    static inline bool dark = false;

private:
    void makeApps();

    void makeClone(InstanceConfig config, const QString& letter, const QColor& color,
                   const std::string& label = {});

    void makeClones();

    TemporaryHome home_;
    TemporaryFolder folder_;
    std::filesystem::path apps_ = folder_ / "Applications";
    StubbedModel stubs_{home_ / "Applications"};
    UpdaterController updater_;
    IconLoader icons_{std::make_shared<ThreadPoolTasks>()};
    MainWindow window_{stubs_.model(), updater_, icons_};
};

} // namespace quorvel::testing
