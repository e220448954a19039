#include "tests/QuorvelApp/WindowFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPlainTextEdit>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

class ConfigurationPaneTest : public WindowTest {};

TEST_F(ConfigurationPaneTest, SelectingAnAppFillsTheConfiguration) {
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    EXPECT_TRUE(shown(u"Checking how Notes stores its data…"_s));
    EXPECT_TRUE(shown(u"Saved to ~/Applications/Notes (2).app"_s));
    EXPECT_EQ(field(u"Name"_s)->text(), u"Notes (2)"_s);
    ASSERT_TRUE(eventually([&] {
        return shown(u"“Notes” isn’t sandboxed → Home override (A), the reliable path most apps "
                     u"use."_s);
    }));
    EXPECT_TRUE(button(u"Create Shortcut"_s)->isEnabled());
    EXPECT_FALSE(sheet.session().form().selectedSandboxed);
}

TEST_F(ConfigurationPaneTest, ASandboxedAppIsWarnedAbout) {
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

TEST_F(ConfigurationPaneTest, ALateAnswerForAnotherAppIsDropped) {
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

TEST_F(ConfigurationPaneTest, DetectionShowsASpinnerThenItsOutcome) {
    addApps();
    stubs.probe = [] { return ProbeResult{.recommendedStrategy = Strategy::wrapperIdentity}; };
    open();
    NewCloneView& sheet = openSheet();
    choose(u"Notes"_s);
    // The proposal made for the app would take the place of what is detected before it comes.
    ASSERT_TRUE(eventually([&] {
        return sheet.session().form().strategyReason.find("sandboxed") != std::string::npos;
    }));
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

TEST_F(ConfigurationPaneTest, AFailedDetectionIsTold) {
    addApps();
    stubs.probe = [] { return std::nullopt; };
    open();
    openSheet();
    choose(u"Notes"_s);
    button(u"Auto-detect"_s)->click();
    EXPECT_TRUE(eventually(
        [&] { return shown(u"Couldn't detect: Not a readable .app: /Applications/Notes.app"_s); }));
}

TEST_F(ConfigurationPaneTest, OffersExactlyThreeStrategies) {
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    auto* choices = window->findChild<QComboBox*>();
    ASSERT_EQ(choices->count(), 3);
    EXPECT_EQ(choices->itemText(0), u"Home override (A)"_s);
    EXPECT_EQ(choices->itemText(1), u"Container redirect (B)"_s);
    EXPECT_EQ(choices->itemText(2), u"Wrapper identity (C)"_s);
    choices->setCurrentIndex(2);
    EXPECT_EQ(sheet.session().form().strategy, Strategy::wrapperIdentity);
}

TEST_F(ConfigurationPaneTest, AdvancedOptionsAreFoldedAwayAndBoundToTheForm) {
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
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
    EXPECT_EQ(field(u"Data location"_s)->placeholderText(), u"~/QuorvelInstances/Notes (2)"_s);
}

TEST_F(ConfigurationPaneTest, TheIsolationBoxIsTheInverseOfSharing) {
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    QCheckBox* isolate =
        checkBox(window.get(), u"Isolate this clone's Downloads, Documents & Desktop"_s);
    EXPECT_FALSE(isolate->isChecked());
    isolate->click();
    EXPECT_FALSE(sheet.session().form().shareUserFolders);
    button(u"Web App"_s)->click();
    EXPECT_FALSE(isolate->isVisible());
}

TEST_F(ConfigurationPaneTest, TheMonochromeBoxNeedsAMenuBarIcon) {
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    QCheckBox* monochrome = checkBox(window.get(), u"Menu-bar icon as monochrome (template)"_s);
    EXPECT_FALSE(monochrome->isEnabled());
    checkBox(window.get(), u"Show a menu-bar icon while running"_s)->click();
    EXPECT_TRUE(monochrome->isEnabled());
    monochrome->click();
    checkBox(window.get(), u"Show a menu-bar icon while running"_s)->click();
    EXPECT_FALSE(monochrome->isEnabled());
    EXPECT_TRUE(sheet.session().form().menuBarTemplate) << "the choice is kept";
}

TEST_F(ConfigurationPaneTest, ACustomIconIsChosenShownAndCleared) {
    panels.icon = [](QWidget*) { return std::optional<std::filesystem::path>("/i/mine.icns"); };
    panels.dataFolder = [](QWidget*) { return std::optional<std::filesystem::path>("/Volumes/E"); };
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    EXPECT_TRUE(shown(u"Uses the app's own icon"_s));
    button(u"Choose .icns…"_s)->click();
    EXPECT_EQ(sheet.session().form().customIcon, std::filesystem::path("/i/mine.icns"));
    EXPECT_FALSE(shown(u"Uses the app's own icon"_s));
    button(u"Clear"_s)->click();
    EXPECT_FALSE(sheet.session().form().customIcon);
    EXPECT_TRUE(shown(u"Uses the app's own icon"_s));
    button(u"Choose…"_s)->click();
    EXPECT_EQ(sheet.session().form().dataPath, "/Volumes/E/Notes (2)");
}

TEST_F(ConfigurationPaneTest, TheHeaderNamesWhatWasChosen) {
    openSheetWith(u"Notes"_s);
    EXPECT_TRUE(shown(u"Notes"_s));
    EXPECT_TRUE(shown(u"/Applications/Notes.app"_s));
    button(u"Web App"_s)->click();
    field(u"Website URL"_s)->setText(u"a.test"_s);
    EXPECT_TRUE(shown(u"a.test"_s));
    EXPECT_EQ(window->findChild<ConfigurationPane*>()->width(), 300);
}

TEST_F(ConfigurationPaneTest, ADetectionThatFindsASingletonLeavesTheChoice) {
    stubs.probe = [] { return ProbeResult{.recommendedStrategy = Strategy::unsupported}; };
    openSheetWith(u"Notes"_s);
    button(u"Auto-detect"_s)->click();
    EXPECT_TRUE(eventually([&] {
        return shown(u"This app resists cloning (singleton). It may not stay isolated."_s);
    }));
    EXPECT_EQ(window->findChild<QComboBox*>()->currentText(), u"Home override (A)"_s);
}

} // namespace
} // namespace quorvel::testing
