#include "LaunchKit/Icons/IcnsWriter.h"
#include "QuorvelApp/widgets/ColorWell.h"
#include "tests/QuorvelApp/WindowFixture.h"
#include "tests/support/IconArtwork.h"

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QScrollBar>
#include <QTest>
#include <QWheelEvent>

#include <array>

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
    stubs.sandboxed = {"/Applications/Mail.app"};
    NewCloneView& sheet = openSheetWith(u"Mail"_s);
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
    stubs.probe = [] { return ProbeResult{.recommendedStrategy = Strategy::wrapperIdentity}; };
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    // The proposal made for the app would take the place of what is detected before it comes.
    ASSERT_TRUE(eventually([&] {
        return sheet.session().form().strategyReason.find("sandboxed") != std::string::npos;
    }));
    QPushButton* detect = button(u"Auto-detect"_s);
    stubs.tasks->holding = true;
    detect->click();
    EXPECT_FALSE(detect->isEnabled());
    EXPECT_EQ(detect->text(), QString());
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return shown(u"Detected: Wrapper identity (C)."_s); }));
    EXPECT_EQ(window->findChild<QComboBox*>()->currentText(), u"Wrapper identity (C)"_s);
    EXPECT_TRUE(detect->isEnabled());
}

TEST_F(ConfigurationPaneTest, DetectionEntersTheVariablesThatACloneNeeds) {
    stubs.probe = [] {
        return ProbeResult{.singleton = SingletonTier::machPort,
                           .environment = {{"DBUS_SESSION_BUS_ADDRESS", "disabled:"}},
                           .recommendedStrategy = Strategy::homeOverride};
    };
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    button(u"Auto-detect"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Detected: Home override (A)."_s); }));
    EXPECT_EQ(sheet.session().form().envText, "DBUS_SESSION_BUS_ADDRESS=disabled:");
    EXPECT_EQ(window->findChildren<QPlainTextEdit*>()[0]->toPlainText(),
              u"DBUS_SESSION_BUS_ADDRESS=disabled:"_s);
}

TEST_F(ConfigurationPaneTest, AFailedDetectionIsReported) {
    stubs.probe = [] { return std::nullopt; };
    openSheetWith(u"Notes"_s);
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

TEST_F(ConfigurationPaneTest, TheVariablesThatAnAppNeedsAreShownWithTheirCostAndCanBeChanged) {
    stubs.suggested = {{"/Applications/Notes.app", {{"DBUS_SESSION_BUS_ADDRESS", "disabled:"}}}};
    const QString cost =
        u"Without the session bus, the clone runs beside the original, but shows no "
        u"notifications and can’t use the desktop’s portals and keyring."_s;
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    QPlainTextEdit* editor = nullptr;
    for (auto* found : window->findChildren<QPlainTextEdit*>()) {
        editor = found->accessibleName() == u"Environment variables"_s ? found : editor;
    }
    ASSERT_TRUE(eventually(
        [&] { return editor->toPlainText() == u"DBUS_SESSION_BUS_ADDRESS=disabled:"_s; }));
    EXPECT_TRUE(shown(cost));
    EXPECT_EQ(sheet.session().form().makeRequest().environment,
              (std::map<std::string, std::string>{{"DBUS_SESSION_BUS_ADDRESS", "disabled:"}}));
    editor->clear();
    EXPECT_FALSE(shown(cost));
    EXPECT_TRUE(sheet.session().form().makeRequest().environment.empty());
    choose(u"Mail"_s);
    ASSERT_TRUE(eventually([&] { return stubs.bundlesRead > 1; }));
    EXPECT_EQ(editor->toPlainText(), QString()) << "of an app that needs none";
}

TEST_F(ConfigurationPaneTest, DetectionReturnsTheBusToAnAppWhoseCopiesRunSideBySide) {
    stubs.suggested = {{"/Applications/Notes.app", {{"DBUS_SESSION_BUS_ADDRESS", "disabled:"}}}};
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    const auto text = [&] { return sheet.session().form().envText; };
    for (const SingletonTier tier : {SingletonTier::unknown, SingletonTier::none}) {
        ASSERT_TRUE(eventually([&] { return text() == "DBUS_SESSION_BUS_ADDRESS=disabled:"; }));
        stubs.probe = [tier] {
            return ProbeResult{.singleton = tier, .recommendedStrategy = Strategy::homeOverride};
        };
        button(u"Auto-detect"_s)->click();
        ASSERT_TRUE(eventually([&] { return !sheet.session().form().detecting; }));
    }
    EXPECT_EQ(text(), "");
}

TEST_F(ConfigurationPaneTest, TheAdvancedOptionsExplainThemselves) {
    openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    for (const QString& help :
         {u"Where this clone's isolated data is stored. Put it on an external or cloud drive if "
          u"you "
          u"like."_s,
          u"Draws a short text badge on the Dock icon to tell clones apart."_s,
          u"Passed to the app on launch. Leave blank for the auto-detected default — Electron & "
          u"Chromium browsers get --user-data-dir, Firefox gets -profile, Eclipse gets -data, "
          u"automatically."_s,
          u"One KEY=VALUE per line. {{instanceHome}} expands to the data location."_s,
          u"One KEY=VALUE per line, e.g. LSUIElement=true. Merged into the wrapper's Info.plist."_s,
          u"Off (default): saved files go to your shared Finder folders. On: the clone keeps its "
          u"own, inside its data folder — for a sandboxed or automated clone you don't want "
          u"touching your files."_s}) {
        EXPECT_TRUE(shown(help)) << help.toStdString();
    }
    EXPECT_EQ(button(u"Auto-detect"_s)->toolTip(),
              u"Launch the app briefly to detect how it stores data"_s);
    EXPECT_EQ(field(u"Icon label"_s)->placeholderText(), u"e.g. WORK"_s);
    EXPECT_EQ(field(u"Launch arguments"_s)->placeholderText(), u"--flag value"_s);
}

TEST_F(ConfigurationPaneTest, TheColorWellColorsTheLabel) {
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    field(u"Icon label"_s)->setText(u"WORK"_s);
    EXPECT_EQ(sheet.session().form().makeRequest().iconLabel->colorHex, "#FFFFFF");
    auto* well = window->findChild<ColorWell*>();
    const QImage white = well->grab().toImage();
    well->click();
    auto* colors = window->findChild<QColorDialog*>();
    ASSERT_NE(colors, nullptr);
    colors->setCurrentColor(QColor(0x12, 0xAB, 0x0F));
    colors->accept();
    EXPECT_EQ(sheet.session().form().makeRequest().iconLabel->colorHex, "#12AB0F");
    const QImage picture = well->grab().toImage();
    EXPECT_EQ(white.pixelColor(22, 12), QColor(Qt::white));
    EXPECT_EQ(picture.pixelColor(22, 12), QColor(0x12, 0xAB, 0x0F));
}

TEST_F(ConfigurationPaneTest, TheWheelScrollsThePaneAndChangesNoChoice) {
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    auto* pane = window->findChild<ConfigurationPane*>()->findChild<QScrollArea*>();
    auto* choices = window->findChild<QComboBox*>();
    choices->setFocus();
    ASSERT_TRUE(eventually([&] { return pane->verticalScrollBar()->maximum() > 100; }));
    pane->verticalScrollBar()->setValue(0);
    const QPointF middle = choices->rect().center();
    QWheelEvent turn(middle, choices->mapToGlobal(middle), {}, {0, -120}, Qt::NoButton,
                     Qt::NoModifier, Qt::NoScrollPhase, false);
    QSpontaneKeyEvent::setSpontaneous(
        &turn); // as the system's are; others stay where they are sent
    qApp->notify(choices, &turn);
    EXPECT_EQ(choices->currentIndex(), 0);
    EXPECT_EQ(sheet.session().form().strategy, Strategy::homeOverride);
    EXPECT_GT(pane->verticalScrollBar()->value(), 0);
}

TEST_F(ConfigurationPaneTest, ADetectionOfAnAppThatIsSelectedNoMoreIsDropped) {
    for (const bool succeeds : {true, false}) {
        stubs.probe = [succeeds]() -> std::optional<ProbeResult> {
            return succeeds ? std::optional(
                                  ProbeResult{.recommendedStrategy = Strategy::wrapperIdentity})
                            : std::nullopt;
        };
        stubs.installed.clear();
        NewCloneView& sheet = openSheetWith(u"Notes"_s);
        const auto hasProposal = [&] {
            return sheet.session().form().strategyReason.find("sandboxed") != std::string::npos;
        };
        ASSERT_TRUE(eventually(hasProposal));
        stubs.tasks->holding = true;
        button(u"Auto-detect"_s)->click();
        choose(u"Mail"_s);
        EXPECT_TRUE(sheet.session().form().detecting) << "it continues";
        stubs.tasks->release();
        ASSERT_TRUE(eventually([&] { return !sheet.session().form().detecting && hasProposal(); }));
        EXPECT_EQ(sheet.session().form().strategy, Strategy::homeOverride);
        EXPECT_FALSE(sheet.session().form().detectNote);
        EXPECT_TRUE(button(u"Auto-detect"_s)->isEnabled());
        EXPECT_TRUE(shown(u"“Mail” isn’t sandboxed → Home override (A), the reliable path most "
                          u"apps use."_s));
    }
}

TEST_F(ConfigurationPaneTest, EachBoxChangesItsOwnMemberOfTheRequestAlone) {
    using Request = WrapperFactory::Request;
    struct Box {
        QString label;
        bool Request::*member;
    };
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    const std::vector<Box> boxes{
        {u"Show a menu-bar icon while running"_s, &Request::menuBarIcon},
        {u"Menu-bar icon as monochrome (template)"_s, &Request::menuBarIconTemplate},
        {u"Hide this clone's Dock icon (menu-bar/background app)"_s, &Request::hideWrapperIcon},
        {u"Register as a browser / URL handler"_s, &Request::registerAsBrowser},
        {u"Show in Finder's “Open With”"_s, &Request::openWithPassthrough},
        {u"Isolate this clone's Downloads, Documents & Desktop"_s, &Request::shareUserFolders}};
    for (const Box& clicked : boxes) {
        const Request before = sheet.session().form().makeRequest();
        checkBox(window.get(), clicked.label)->click();
        const Request after = sheet.session().form().makeRequest();
        for (const Box& each : boxes) {
            EXPECT_EQ(before.*each.member != after.*each.member, each.member == clicked.member)
                << clicked.label.toStdString() << " / " << each.label.toStdString();
        }
    }
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
    EXPECT_TRUE(sheet.session().form().menuBarIconTemplate) << "the choice is kept";
}

TEST_F(ConfigurationPaneTest, ACustomIconIsChosenShownAndCleared) {
    const std::filesystem::path icon = home / "mine.icns";
    write(icon, icnsFile(std::array{icnsChunk(chatIcon(64))}));
    panels.icon = [&](QObject*) { return std::optional(icon); };
    panels.dataFolder = [](QObject*) { return std::optional<std::filesystem::path>("/Volumes/E"); };
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    EXPECT_TRUE(shown(u"Uses the app's own icon"_s));
    button(u"Choose .icns…"_s)->click();
    ASSERT_TRUE(eventually([&] { return sheet.session().form().customIcon == icon; }));
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
