#pragma once

#include "QuorvelApp/CloneDetailView.h"
#include "QuorvelApp/NewCloneView.h"
#include "QuorvelApp/app/MainWindow.h"
#include "QuorvelApp/library/Sidebar.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/QuorvelApp/WidgetLookup.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <QAction>

#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace quorvel {
struct InstanceConfig;
struct InstanceRecord;
} // namespace quorvel

namespace quorvel::testing {

/// A window in a throw-away home, whose model uses stubs.
class WindowTest : public ::testing::Test {
protected:
    WindowTest();
    ~WindowTest() override;

    /// Writes an app clone of "Notes" with that name, which the window lists when it opens.
    const InstanceRecord& addClone(const std::string& name);
    const InstanceRecord& addClone(const std::string& fileName, InstanceConfig config);
    /// Adds one and returns its wrapper.
    std::filesystem::path addWrapper(const std::string& name);
    /// The clones that the model lists.
    std::size_t cloneCount();
    /// Installs "Mail", "Notes" and "Zoom".
    void addApps();

    MainWindow& open();
    /// Opens the sheet of an open window, with the apps scanned.
    NewCloneView& openSheet();
    /// Opens window and sheet with `app` chosen.
    NewCloneView& openSheetWith(const QString& app);
    void choose(const QString& app) { chooseApp(window.get(), app); }
    /// The middle of that app's tile, in the grid's viewport.
    QPoint middleOfTile(const QString& app);
    void select(const InstanceRecord& clone);

    /// The menus' command with these words; throws if there is none.
    QAction* command(const QString& words);
    QPushButton* button(const QString& text) { return visibleButton(window.get(), text); }
    QLineEdit* field(const QString& name) { return fieldNamed(window.get(), name); }
    bool shown(const QString& text) { return shows(window.get(), text); }

    TemporaryHome home;
    std::filesystem::path folder = home / "Applications";
    StubbedModel stubs{folder};
    UpdaterController updater;
    IconLoader icons{std::make_shared<ThreadPoolTasks>()};
    FilePanels panels{};
    std::unique_ptr<MainWindow> window;

private:
    std::vector<std::unique_ptr<InstanceRecord>> added_{};
};

} // namespace quorvel::testing
