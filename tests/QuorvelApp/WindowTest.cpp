#include "QuorvelApp/CloneDetailView.h"
#include "QuorvelApp/MainWindow.h"
#include "QuorvelApp/MessageSheet.h"
#include "QuorvelApp/NewCloneView.h"
#include "QuorvelApp/QtText.h"
#include "QuorvelApp/Sidebar.h"
#include "tests/QuorvelApp/StubServices.h"
#include "tests/QuorvelApp/WidgetLookup.h"
#include "tests/support/AppBundles.h"
#include "tests/support/TemporaryHome.h"

#include <QAccessible>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListView>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QTest>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A window on a throw-away home, with stubs behind the model.
class WindowTest : public ::testing::Test {
protected:
    InstanceRecord addClone(const std::string& name) {
        InstanceConfig config = minimalConfig(name);
        config.bundleId = WrapperFactory::defaultBundleId(name);
        config.targetAppPath = "/Applications/Notes.app";
        makeWrapper(folder / (name + ".app"), config);
        return {.bundleURL = folder / (name + ".app"), .config = config};
    }

    void addApps() {
        for (const std::string name : {"Mail", "Notes", "Zoom"}) {
            stubs.installed.push_back(
                {.url = "/Applications/" + name + ".app", .name = name, .bundleId = name});
        }
    }

    MainWindow& open() {
        window = std::make_unique<MainWindow>(stubs.model(), updater, icons, panels);
        window->show();
        return *window;
    }

    NewCloneView& openSheet() {
        window->content().showNewClone();
        auto* sheet = window->findChildren<NewCloneView*>().constLast();
        EXPECT_TRUE(eventually([&] { return !stubs.model().catalogLoading(); }));
        return *sheet;
    }

    void choose(const QString& app) {
        auto* grid = window->findChild<AppGrid*>();
        for (int row = 0; row < grid->model()->rowCount(); ++row) {
            if (grid->model()->index(row, 0).data() == app) {
                grid->setCurrentIndex(grid->model()->index(row, 0));
            }
        }
    }

    QPushButton* button(const QString& text) { return visibleButton(window.get(), text); }
    bool shown(const QString& text) { return shows(window.get(), text); }

    TemporaryHome home;
    fs::path folder = home / "Applications";
    StubbedModel stubs{folder};
    UpdaterController updater;
    IconLoader icons{std::make_shared<ThreadPoolTasks>()};
    FilePanels panels{};
    std::unique_ptr<MainWindow> window;
};

TEST_F(WindowTest, WithoutClonesInvitesToMakeTheFirst) {
    open();
    EXPECT_TRUE(shown(u"No clones yet"_s));
    EXPECT_TRUE(shown(u"Create an isolated copy of any app to\nrun two accounts side by side."_s));
    EXPECT_TRUE(shown(u"Create your first clone to get started."_s));
    EXPECT_EQ(button(u"New Clone"_s)->property("look"), u"prominent"_s);
    button(u"New Clone"_s)->click();
    EXPECT_TRUE(window->content().showingNewClone());
}

TEST_F(WindowTest, ListsTheClonesWhenItAppears) {
    addClone("Work");
    addClone("Home");
    open();
    EXPECT_FALSE(shown(u"No clones yet"_s));
    EXPECT_TRUE(shown(u"Clones"_s));
    EXPECT_TRUE(shown(u"Select a clone to manage it."_s));
    const auto* list = window->findChild<QListView*>();
    ASSERT_EQ(list->model()->rowCount(), 2);
    EXPECT_EQ(list->model()->index(0, 0).data(), u"Home"_s);
    EXPECT_EQ(list->model()->index(1, 0).data(CloneListModel::SummaryRole), u"Notes"_s);
}

TEST_F(WindowTest, IsAtLeastAsLargeAsItMustBeAndNamedForTheApplication) {
    open();
    EXPECT_EQ(window->windowTitle(), u"Quorvel"_s);
    EXPECT_EQ(window->minimumSize(), QSize(760, 480));
    EXPECT_EQ(window->content().sidebar().minimumWidth(), 240);
}

TEST_F(WindowTest, ShowsTheSelectedCloneAndFallsBackWhenItIsDeleted) {
    const InstanceRecord work = addClone("Work");
    addClone("Home");
    open();
    window->content().sidebar().select(work.id());
    EXPECT_TRUE(shown(u"Work"_s));
    EXPECT_TRUE(shown(u"Not running"_s));
    EXPECT_TRUE(shown(u"Details"_s));
    button(u"Delete"_s)->click();
    EXPECT_TRUE(shown(u"Delete “Work”?"_s));
    EXPECT_TRUE(shown(u"“Delete Clone Only” removes the app but keeps its data at "
                      u"~/QuorvelInstances/Work. “…and Its Data” also erases that folder — "
                      u"accounts and settings for this clone are gone for good."_s));
    button(u"Delete Clone Only"_s)->click();
    EXPECT_TRUE(shown(u"Select a clone to manage it."_s));
    EXPECT_EQ(window->content().sidebar().selection(), work.id()) << "the selection stays";
    EXPECT_FALSE(fs::exists(work.bundleURL));
}

TEST_F(WindowTest, DeletesTheDataOnlyWhenAsked) {
    for (const bool withData : {false, true}) {
        const InstanceRecord work = addClone("Work");
        write(home / "QuorvelInstances/Work/data", "x");
        open();
        window->content().sidebar().select(work.id());
        button(u"Delete"_s)->click();
        button(withData ? u"Delete Clone and Its Data"_s : u"Delete Clone Only"_s)->click();
        EXPECT_FALSE(fs::exists(work.bundleURL));
        EXPECT_EQ(fs::exists(home / "QuorvelInstances/Work/data"), !withData);
    }
}

TEST_F(WindowTest, ADeletionCanBeCancelledByButtonAndByEscape) {
    const InstanceRecord work = addClone("Work");
    open();
    window->content().sidebar().select(work.id());
    button(u"Delete"_s)->click();
    button(u"Cancel"_s)->click();
    button(u"Delete"_s)->click();
    QTest::keyClick(window->findChildren<MessageSheet*>().constLast(), Qt::Key_Escape);
    EXPECT_FALSE(shown(u"Delete “Work”?"_s));
    EXPECT_TRUE(fs::exists(work.bundleURL));
}

TEST_F(WindowTest, TheLaunchButtonFocusesWhatRuns) {
    const InstanceRecord work = addClone("Work");
    open();
    window->content().sidebar().select(work.id());
    button(u"Launch"_s)->click();
    EXPECT_THAT(stubs.workspace->opened, ElementsAre(work.bundleURL));
    stubs.workspace->running = {work.config.bundleId};
    stubs.model().refreshRunningState();
    EXPECT_TRUE(shown(u"Running"_s));
    button(u"Focus"_s)->click();
    EXPECT_EQ(stubs.workspace->opened.size(), 2U);
    const auto* list = window->findChild<QListView*>();
    EXPECT_TRUE(list->model()->index(0, 0).data(CloneListModel::RunningRole).toBool());
    stubs.workspace->running.clear();
    stubs.model().refreshRunningState();
    EXPECT_FALSE(list->model()->index(0, 0).data(CloneListModel::RunningRole).toBool());
}

TEST_F(WindowTest, RevealsTheWrapper) {
    const InstanceRecord work = addClone("Work");
    open();
    window->content().sidebar().select(work.id());
    button(u"Reveal in Finder"_s)->click();
    EXPECT_TRUE(eventually([&] { return !stubs.workspace->revealed.empty(); }));
    EXPECT_THAT(stubs.workspace->revealed, ElementsAre(work.bundleURL));
}

TEST_F(WindowTest, OffersToMoveFilesUntilTheyAreMoved) {
    const InstanceRecord work = addClone("Work");
    write(home / "QuorvelInstances/Work/Downloads/a", "x");
    fs::create_directories(home / "Downloads");
    open();
    window->content().sidebar().select(work.id());
    EXPECT_TRUE(shown(u"This clone keeps its own Downloads, Documents & Desktop"_s));
    button(u"Move files to shared folders"_s)->click();
    EXPECT_TRUE(shown(u"Move “Work” files to your shared folders?"_s));
    button(u"Move Files & Share"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Done"_s); }));
    EXPECT_TRUE(shown(u"Moved 1 from Downloads into your shared folders. “Work” now saves "
                      u"there."_s));
    EXPECT_FALSE(shown(u"This clone keeps its own Downloads, Documents & Desktop"_s));
    button(u"OK"_s)->click();
    EXPECT_FALSE(stubs.model().statusMessage());
}

TEST_F(WindowTest, AnErrorShowsUntilItIsDismissed) {
    open();
    stubs.model().setLastError("<b>first</b>");
    EXPECT_TRUE(shown(u"Something went wrong"_s));
    EXPECT_TRUE(shown(u"<b>first</b>"_s)) << "as plain text";
    stubs.model().setLastError("second");
    EXPECT_TRUE(shown(u"second"_s));
    EXPECT_FALSE(shown(u"<b>first</b>"_s));
    QTest::keyClick(window->findChildren<MessageSheet*>().constLast(), Qt::Key_Escape);
    EXPECT_FALSE(stubs.model().lastError());
    EXPECT_FALSE(shown(u"Something went wrong"_s));
}

TEST_F(WindowTest, AnErrorShowsAboveTheSheet) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    stubs.model().setLastError("no");
    EXPECT_TRUE(shown(u"Something went wrong"_s));
    button(u"OK"_s)->click();
    EXPECT_TRUE(sheet.isVisible());
}

TEST_F(WindowTest, HasThreeMenuCommands) {
    open();
    std::vector<QString> titles;
    for (const QAction* menu : window->menuBar()->actions()) {
        for (const QAction* action : menu->menu()->actions()) {
            titles.push_back(QString(action->text()).remove(u'&') + u' ' +
                             action->shortcut().toString());
        }
    }
    EXPECT_THAT(titles,
                ElementsAre(u"Check for Updates… "_s, u"New Clone… Ctrl+N"_s, u"Refresh Ctrl+R"_s));
    EXPECT_FALSE(window->menuBar()->actions().at(0)->menu()->actions().at(0)->isEnabled());
}

TEST_F(WindowTest, TheRefreshCommandFindsAWrapperCopiedInByHand) {
    open();
    addClone("Work");
    window->menuBar()->actions().at(2)->menu()->actions().at(0)->trigger();
    EXPECT_FALSE(shown(u"No clones yet"_s));
}

TEST_F(WindowTest, TheNewCloneCommandOpensTheSheetOnce) {
    open();
    QAction* command = window->menuBar()->actions().at(1)->menu()->actions().at(0);
    command->trigger();
    EXPECT_TRUE(window->content().showingNewClone());
    EXPECT_FALSE(stubs.model().startNewCloneRequested()) << "the request is taken";
    command->trigger();
    EXPECT_EQ(window->findChildren<NewCloneView*>().size(), 1);
}

TEST_F(WindowTest, ASheetEndsWithEscapeAndBeginsAnew) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    fieldNamed(window.get(), u"Website URL"_s)->setText(u"a.test"_s);
    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_FALSE(window->content().showingNewClone());
    EXPECT_EQ(openSheet().session().form().webURL, "");
}

TEST_F(WindowTest, TheSheetScansTheAppsAndShowsThem) {
    addApps();
    stubs.tasks->holding = true;
    open();
    window->content().showNewClone();
    EXPECT_TRUE(shown(u"New Shortcut"_s));
    EXPECT_TRUE(shown(u"Scanning your apps…"_s));
    EXPECT_TRUE(shown(u"Select an app"_s));
    EXPECT_FALSE(button(u"Create Shortcut"_s)->isEnabled());
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return !stubs.model().catalogLoading(); }));
    EXPECT_EQ(window->findChild<AppGrid*>()->model()->rowCount(), 3);
}

TEST_F(WindowTest, AnEmptyCatalogSaysSo) {
    open();
    openSheet();
    EXPECT_TRUE(shown(u"No apps found."_s));
}

TEST_F(WindowTest, SearchingFiltersTheGrid) {
    addApps();
    open();
    openSheet();
    fieldNamed(window.get(), u"Search apps"_s)->setText(u"NOTE"_s);
    EXPECT_EQ(window->findChild<AppGrid*>()->model()->rowCount(), 1);
    fieldNamed(window.get(), u"Search apps"_s)->setText(u" xyz "_s);
    EXPECT_TRUE(shown(u"No apps match “ xyz ”."_s));
    button(u"File / Folder"_s)->click();
    EXPECT_FALSE(fieldNamed(window.get(), u"Search apps"_s)->isVisible());
}

TEST_F(WindowTest, ATileThatAppearsAsksForItsSandboxStatusOnce) {
    addApps();
    stubs.sandboxed = {"/Applications/Mail.app"};
    open();
    openSheet();
    window->grab();
    ASSERT_TRUE(eventually([&] { return stubs.model().sandboxStatus().size() == 3; }));
    window->grab();
    EXPECT_EQ(stubs.bundlesRead, 3);
    const auto* grid = window->findChild<AppGrid*>();
    EXPECT_TRUE(grid->model()->index(0, 0).data(AppGridModel::SandboxedRole).toBool());
    EXPECT_FALSE(grid->model()->index(1, 0).data(AppGridModel::SandboxedRole).toBool());
}

TEST_F(WindowTest, SelectingAnAppFillsTheConfiguration) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Notes"_s);
    EXPECT_TRUE(shown(u"Checking how Notes stores its data…"_s));
    EXPECT_TRUE(shown(u"Saved to ~/Applications/Notes (2).app"_s));
    EXPECT_EQ(fieldNamed(window.get(), u"Name"_s)->text(), u"Notes (2)"_s);
    ASSERT_TRUE(eventually([&] {
        return shown(u"“Notes” isn’t sandboxed → Home override (A), the reliable path most apps "
                     u"use."_s);
    }));
    EXPECT_TRUE(button(u"Create Shortcut"_s)->isEnabled());
    EXPECT_FALSE(sheet.session().form().selectedSandboxed);
}

TEST_F(WindowTest, ASandboxedAppIsWarnedAbout) {
    addApps();
    stubs.sandboxed = {"/Applications/Mail.app"};
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Mail"_s);
    const QString warning =
        u"This app is sandboxed. macOS won't let Quorvel give it a separate data container, so "
        u"both copies will share the same account and settings. You'll get a separate Dock icon, "
        u"but not isolated data."_s;
    ASSERT_TRUE(eventually([&] { return shown(warning); }));
    EXPECT_EQ(sheet.session().form().strategy, Strategy::containerRedirect);
    button(u"Web App"_s)->click();
    EXPECT_FALSE(shown(warning));
}

TEST_F(WindowTest, ALateAnswerForAnotherAppIsDropped) {
    addApps();
    stubs.sandboxed = {"/Applications/Mail.app"};
    open();
    NewCloneView& sheet = openSheet();
    window->grab();
    ASSERT_TRUE(eventually([&] { return stubs.model().sandboxStatus().size() == 3; }));
    stubs.tasks->holding = true;
    choose(u"Mail"_s);
    choose(u"Notes"_s);
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] {
        return sheet.session().form().strategyReason.find("isn’t sandboxed") != std::string::npos;
    }));
    EXPECT_FALSE(eventually([&] { return sheet.session().form().selectedSandboxed; },
                            std::chrono::milliseconds(100)));
    EXPECT_EQ(sheet.session().form().strategy, Strategy::homeOverride);
}

TEST_F(WindowTest, CreatingShowsThatItGoesOnAndThenClosesTheSheet) {
    addApps();
    stubs.create = [&](const auto& request) { return addClone(request.displayName).bundleURL; };
    open();
    openSheet();
    choose(u"Notes"_s);
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    EXPECT_FALSE(button(u"Creating…"_s)->isEnabled());
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return !window->content().showingNewClone(); }));
    EXPECT_EQ(stubs.model().clones().size(), 1U);
    EXPECT_EQ(stubs.workspace->opened.size(), 1U) << "launched, as the box says";
}

TEST_F(WindowTest, AFailedCreationKeepsTheFormAsItWas) {
    addApps();
    stubs.create = [](const auto&) -> fs::path {
        throw WrapperFactory::FactoryError::runnerNotFound();
    };
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Notes"_s);
    fieldNamed(window.get(), u"Name"_s)->setText(u"Mine"_s);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
    EXPECT_TRUE(shown(u"Could not locate the quorvel-runner binary to embed."_s));
    button(u"OK"_s)->click();
    EXPECT_EQ(sheet.session().form().cloneName, "Mine");
    EXPECT_TRUE(button(u"Create Shortcut"_s)->isEnabled());
}

TEST_F(WindowTest, EditsDuringACreationDoNotReachTheRequest) {
    addApps();
    std::string made;
    stubs.create = [&](const auto& request) {
        made = request.displayName;
        return addClone(request.displayName).bundleURL;
    };
    open();
    openSheet();
    choose(u"Notes"_s);
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    fieldNamed(window.get(), u"Name"_s)->setText(u"Late"_s);
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return !window->content().showingNewClone(); }));
    EXPECT_EQ(made, "Notes (2)");
}

TEST_F(WindowTest, AFailureAfterTheSheetWasCancelledIsStillTold) {
    addApps();
    stubs.create = [](const auto&) -> fs::path {
        throw WrapperFactory::FactoryError::runnerNotFound();
    };
    open();
    openSheet();
    choose(u"Notes"_s);
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    button(u"Cancel"_s)->click();
    ASSERT_TRUE(eventually([&] { return window->findChild<NewCloneView*>() == nullptr; }));
    stubs.tasks->release();
    EXPECT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }));
}

TEST_F(WindowTest, DetectionShowsASpinnerThenItsOutcome) {
    addApps();
    stubs.probe = [] { return ProbeResult{.recommendedStrategy = Strategy::wrapperIdentity}; };
    open();
    openSheet();
    choose(u"Notes"_s);
    QPushButton* detect = button(u"Auto-detect"_s);
    EXPECT_EQ(detect->toolTip(), u"Launch the app briefly to detect how it stores data"_s);
    stubs.tasks->holding = true;
    detect->click();
    EXPECT_FALSE(detect->isEnabled());
    EXPECT_EQ(detect->text(), QString());
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return shown(u"Detected: Wrapper identity (C)."_s); }));
    EXPECT_EQ(window->findChild<QComboBox*>()->currentText(), u"Wrapper identity (C)"_s);
    EXPECT_TRUE(detect->isEnabled());
}

TEST_F(WindowTest, AFailedDetectionIsTold) {
    addApps();
    stubs.probe = [] { return std::nullopt; };
    open();
    openSheet();
    choose(u"Notes"_s);
    button(u"Auto-detect"_s)->click();
    EXPECT_TRUE(eventually(
        [&] { return shown(u"Couldn't detect: Not a readable .app: /Applications/Notes.app"_s); }));
}

TEST_F(WindowTest, OffersExactlyThreeStrategies) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Notes"_s);
    auto* choices = window->findChild<QComboBox*>();
    ASSERT_EQ(choices->count(), 3);
    EXPECT_EQ(choices->itemText(0), u"Home override (A)"_s);
    EXPECT_EQ(choices->itemText(1), u"Container redirect (B)"_s);
    EXPECT_EQ(choices->itemText(2), u"Wrapper identity (C)"_s);
    choices->setCurrentIndex(2);
    EXPECT_EQ(sheet.session().form().strategy, Strategy::wrapperIdentity);
}

TEST_F(WindowTest, AWebAddressNamesItsClone) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    EXPECT_TRUE(shown(u"Enter a website URL"_s));
    QTest::keyClicks(fieldNamed(window.get(), u"Website URL"_s), u"www.a.test"_s);
    EXPECT_FALSE(sheet.session().form().cloneName.empty());
    EXPECT_FALSE(shown(u"Enter a website URL"_s));
    EXPECT_FALSE(window->findChild<QComboBox*>()->isVisible()) << "no strategy for a website";
}

TEST_F(WindowTest, PanelsFillTheirFieldsAndCancellingChangesNothing) {
    std::optional<fs::path> answer;
    const auto panel = [&](QWidget*) { return answer; };
    panels = {panel, panel, panel, panel, panel};
    open();
    NewCloneView& sheet = openSheet();
    button(u"File / Folder"_s)->click();
    EXPECT_TRUE(shown(u"Choose a file or folder"_s));
    button(u"Browse…"_s)->click();
    EXPECT_EQ(sheet.session().form().filePath, "");
    answer = "/Users/u/Report.pdf";
    button(u"Browse…"_s)->click();
    EXPECT_EQ(sheet.session().form().filePath, "/Users/u/Report.pdf");
    EXPECT_EQ(sheet.session().form().cloneName, "Report");
}

TEST_F(WindowTest, AdvancedOptionsAreFoldedAwayAndBoundToTheForm) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Notes"_s);
    EXPECT_FALSE(shown(u"Data location"_s));
    button(u"Advanced options"_s)->click();
    EXPECT_TRUE(sheet.session().form().showAdvanced);
    for (const QString& label :
         {u"Data location"_s, u"Icon"_s, u"Icon label"_s, u"Launch arguments"_s,
          u"Environment variables"_s, u"Info.plist overrides"_s, u"Uses the app's own icon"_s,
          u"Show a menu-bar icon while running"_s, u"Menu-bar icon as monochrome (template)"_s,
          u"Hide this clone's Dock icon (menu-bar/background app)"_s,
          u"Register as a browser / URL handler"_s, u"Show in Finder's “Open With”"_s,
          u"Isolate this clone's Downloads, Documents & Desktop"_s}) {
        EXPECT_TRUE(shown(label)) << label.toStdString();
    }
    const auto editors = window->findChildren<QPlainTextEdit*>();
    ASSERT_EQ(editors.size(), 2);
    EXPECT_EQ(editors[0]->height(), 54);
    editors[0]->setPlainText(u"A=1"_s);
    EXPECT_EQ(sheet.session().form().envText, "A=1");
    EXPECT_EQ(fieldNamed(window.get(), u"Data location"_s)->placeholderText(),
              u"~/QuorvelInstances/Notes (2)"_s);
}

QCheckBox* box(QWidget* root, const QString& name) {
    for (QCheckBox* found : root->findChildren<QCheckBox*>()) {
        if (found->accessibleName() == name || found->text().remove(u'&') == name) {
            return found;
        }
    }
    throw std::runtime_error("no box " + name.toStdString());
}

TEST_F(WindowTest, TheIsolationBoxIsTheInverseOfSharing) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    QCheckBox* isolate =
        box(window.get(), u"Isolate this clone's Downloads, Documents & Desktop"_s);
    EXPECT_FALSE(isolate->isChecked());
    isolate->click();
    EXPECT_FALSE(sheet.session().form().shareUserFolders);
    button(u"Web App"_s)->click();
    EXPECT_FALSE(isolate->isVisible());
}

TEST_F(WindowTest, TheMonochromeBoxNeedsAMenuBarIcon) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    QCheckBox* monochrome = box(window.get(), u"Menu-bar icon as monochrome (template)"_s);
    EXPECT_FALSE(monochrome->isEnabled());
    box(window.get(), u"Show a menu-bar icon while running"_s)->click();
    EXPECT_TRUE(monochrome->isEnabled());
    monochrome->click();
    box(window.get(), u"Show a menu-bar icon while running"_s)->click();
    EXPECT_FALSE(monochrome->isEnabled());
    EXPECT_TRUE(sheet.session().form().menuBarTemplate) << "the choice is kept";
}

TEST_F(WindowTest, NamesFromFilesAreShownAsTheirCharacters) {
    const std::string name = "<img src=x><b>hi";
    InstanceConfig config = minimalConfig(name);
    makeWrapper(folder / "x.app", config);
    open();
    window->content().sidebar().select((folder / "x.app").string());
    EXPECT_TRUE(shown(qtText(name)));
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
    }
    button(u"Delete"_s)->click();
    EXPECT_TRUE(shown(u"Delete “<img src=x><b>hi”?"_s));
}

TEST_F(WindowTest, EveryControlHasAnAccessibleNameAndRole) {
    addApps();
    addClone("Work");
    open();
    window->content().sidebar().select((folder / "Work.app").string());
    openSheet();
    choose(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    int controls = 0;
    for (QWidget* widget : window->findChildren<QWidget*>()) {
        if (!widget->isVisible() || (widget->focusPolicy() & Qt::TabFocus) == 0 ||
            widget->focusProxy() != nullptr) {
            continue;
        }
        const QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(widget);
        ASSERT_NE(accessible, nullptr);
        EXPECT_FALSE(accessible->text(QAccessible::Name).isEmpty())
            << widget->metaObject()->className();
        EXPECT_NE(accessible->role(), QAccessible::NoRole);
        ++controls;
    }
    EXPECT_GT(controls, 20);
    EXPECT_EQ(QAccessible::queryAccessibleInterface(window->findChild<NewCloneView*>())->role(),
              QAccessible::Dialog);
}

TEST_F(WindowTest, TheFocusStaysInTheSheet) {
    addApps();
    addClone("Work");
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Notes"_s);
    ASSERT_TRUE(sheet.isAncestorOf(window->focusWidget())) << "from the beginning";
    for (int step = 0; step < 40; ++step) {
        QTest::keyClick(window->focusWidget(), Qt::Key_Tab);
        ASSERT_TRUE(sheet.isAncestorOf(window->focusWidget())) << step;
    }
}

TEST_F(WindowTest, RightToLeftMirrorsTheColumns) {
    addClone("Work");
    QApplication::setLayoutDirection(Qt::RightToLeft);
    open();
    const Sidebar& sidebar = window->content().sidebar();
    EXPECT_GT(sidebar.mapTo(window.get(), QPoint()).x(), window->width() / 2);
    QApplication::setLayoutDirection(Qt::LeftToRight);
}

TEST_F(WindowTest, SurvivesThousandsOfClonesWithNamesOfFileSize) {
    for (int number = 0; number < 2000; ++number) {
        InstanceConfig config = minimalConfig(std::string(250, 'x') + std::to_string(number));
        makeWrapper(folder / (std::to_string(number) + ".app"), config);
    }
    open();
    window->grab();
    EXPECT_EQ(stubs.model().clones().size(), 2000U);
    window->content().sidebar().select((folder / "1000.app").string());
    fs::remove_all(folder / "1000.app");
    stubs.model().reload();
    EXPECT_TRUE(shown(u"Select a clone to manage it."_s));
}

TEST_F(WindowTest, ACloneThatChangesWhileShownShowsAnew) {
    InstanceRecord work = addClone("Work");
    open();
    window->content().sidebar().select(work.id());
    work.config.displayName = "Renamed";
    makeWrapper(work.bundleURL, work.config);
    stubs.model().reload();
    EXPECT_TRUE(shown(u"Renamed"_s));
}

TEST(Updater, WithoutAServiceCanNeverCheck) {
    UpdaterController updater;
    EXPECT_FALSE(updater.isConfigured());
    EXPECT_FALSE(updater.canCheckForUpdates());
    updater.checkForUpdates();
}

class StubUpdates final : public UpdateService {
public:
    explicit StubUpdates(int& checks, std::function<void(bool)>& tell)
        : checks_(checks),
          tell_(tell) {}
    void observe(std::function<void(bool)> changed) override {
        tell_ = changed;
        changed(true);
    }
    void checkForUpdates() override { ++checks_; }

private:
    int& checks_;
    std::function<void(bool)>& tell_;
};

TEST(Updater, MirrorsTheServicesFlagAndStartsChecks) {
    int checks = 0;
    std::function<void(bool)> tell;
    UpdaterController updater(std::make_unique<StubUpdates>(checks, tell));
    EXPECT_TRUE(updater.isConfigured());
    EXPECT_TRUE(updater.canCheckForUpdates());
    tell(false);
    EXPECT_FALSE(updater.canCheckForUpdates());
    updater.checkForUpdates();
    EXPECT_EQ(checks, 1);
}

} // namespace
} // namespace quorvel::testing
