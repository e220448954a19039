#include "LaunchKit/Icons/IcnsWriter.h"
#include "tests/QuorvelApp/WindowFixture.h"
#include "tests/support/IconArtwork.h"

#include <QComboBox>
#include <QTest>
#include <QToolTip>

#include <array>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

class TargetPaneTest : public WindowTest {};

TEST_F(TargetPaneTest, TheSheetScansTheAppsAndShowsThem) {
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

TEST_F(TargetPaneTest, AnEmptyCatalogSaysSo) {
    open();
    openSheet();
    EXPECT_TRUE(shown(u"No apps found."_s));
}

TEST_F(TargetPaneTest, SearchingFiltersTheGrid) {
    addApps();
    open();
    openSheet();
    field(u"Search apps"_s)->setText(u"NOTE"_s);
    EXPECT_EQ(window->findChild<AppGrid*>()->model()->rowCount(), 1);
    field(u"Search apps"_s)->setText(u" xyz "_s);
    EXPECT_TRUE(shown(u"No apps match “ xyz ”."_s));
    button(u"File / Folder"_s)->click();
    EXPECT_FALSE(field(u"Search apps"_s)->isVisible());
}

TEST_F(TargetPaneTest, OnlyNamesAreSearched) {
    addApps();
    stubs.installed[0].bundleId = "com.example.notes-helper";
    open();
    openSheet();
    field(u"Search apps"_s)->setText(u"notes"_s);
    const auto* grid = window->findChild<AppGrid*>();
    ASSERT_EQ(grid->model()->rowCount(), 1) << "no identifier";
    EXPECT_EQ(grid->model()->index(0, 0).data(), u"Notes"_s);
    field(u"Search apps"_s)->setText(u"Applications"_s);
    EXPECT_EQ(grid->model()->rowCount(), 0) << "no path";
}

TEST_F(TargetPaneTest, TheAppsStayInViewDuringAnotherScan) {
    openSheetWith(u"Notes"_s);
    button(u"Cancel"_s)->click();
    ASSERT_TRUE(eventually([&] { return window->findChild<NewCloneView*>() == nullptr; }));
    stubs.tasks->holding = true;
    window->content().showNewClone();
    EXPECT_TRUE(stubs.model().catalogLoading());
    EXPECT_FALSE(shown(u"Scanning your apps…"_s));
    const auto* grid = window->findChild<AppGrid*>();
    EXPECT_TRUE(grid->isVisible());
    EXPECT_EQ(grid->model()->rowCount(), 3);
    field(u"Search apps"_s)->setText(u"xyz"_s);
    EXPECT_TRUE(shown(u"No apps match “xyz”."_s)) << "rather than that a scan is running";
    stubs.tasks->release();
    EXPECT_TRUE(eventually([&] { return !stubs.model().catalogLoading(); }));
}

TEST_F(TargetPaneTest, ATileThatAppearsAsksForItsSandboxStatusOnce) {
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

TEST_F(TargetPaneTest, AWebAddressNamesItsCloneWhileItIsTyped) {
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    EXPECT_TRUE(shown(u"Enter a website URL"_s));
    QTest::keyClicks(field(u"Website URL"_s), u"www.mail.host.test"_s);
    EXPECT_EQ(sheet.session().form().cloneName, "Mail.Host.Test");
    EXPECT_EQ(field(u"Name"_s)->text(), u"Mail.Host.Test"_s);
    EXPECT_FALSE(shown(u"Enter a website URL"_s));
    EXPECT_FALSE(window->findChild<QComboBox*>()->isVisible()) << "no strategy for a website";
    field(u"Website URL"_s)->clear();
    QTest::keyClicks(field(u"Website URL"_s), u"https://www.other.test/a/b?c"_s);
    EXPECT_EQ(sheet.session().form().cloneName, "Other.Test");
    field(u"Website URL"_s)->clear();
    QTest::keyClicks(field(u"Website URL"_s), u"https://www.other.test"_s);
    EXPECT_EQ(sheet.session().form().cloneName, "Other.Test");
    QTest::keyClicks(field(u"Website URL"_s), u" and more"_s);
    EXPECT_EQ(sheet.session().form().cloneName, "") << "which is not an address";
}

TEST_F(TargetPaneTest, ASiteIsAskedForItsIconAndTitleOnlyAtTheButton) {
    const QString ask = u"Get Icon and Title"_s;
    stubs.previewSite = [](const std::string& address, const std::filesystem::path& place) {
        if (address != "mail.test") {
            throw SitePreviewError("nobody answers");
        }
        write(place / "site.icns", "not an icon");
        return SitePreview{"Mail for all", place / "site.icns"};
    };
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    EXPECT_FALSE(button(ask)->isEnabled()) << "there is no address";
    QTest::keyClicks(field(u"Website URL"_s), u"mail.test"_s);
    EXPECT_TRUE(button(ask)->isEnabled());
    EXPECT_EQ(stubs.sitesAsked, 0) << "nothing is asked for while the user types";
    button(ask)->click();
    EXPECT_TRUE(eventually([&] { return sheet.session().form().cloneName == "Mail for all"; }));
    EXPECT_EQ(stubs.sitesAsked, 1);
    EXPECT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }))
        << "an icon is checked like one that is chosen";
    EXPECT_EQ(sheet.session().form().customIcon, std::nullopt);
    stubs.model().setLastError(std::nullopt);

    // A name that the user edited stays, and a failure is reported.
    QTest::keyClicks(field(u"Name"_s), u"!"_s);
    QTest::keyClicks(field(u"Website URL"_s), u"x"_s);
    button(ask)->click();
    EXPECT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }));
    EXPECT_EQ(stubs.model().lastError(), "Couldn't ask the site: nobody answers");
    EXPECT_EQ(sheet.session().form().cloneName, "Mail for all!");
    EXPECT_FALSE(sheet.session().form().askingSite);
    stubs.model().setLastError(std::nullopt);
}

TEST_F(TargetPaneTest, AnIconThatWasChosenOutlivesTheNextRequest) {
    stubs.previewSite = [](const std::string& address, const std::filesystem::path& place) {
        if (address == "mail.test") {
            write(place / "site.icns", icnsFile(std::array{icnsChunk(chatIcon(64))}));
            return SitePreview{"Mail", place / "site.icns"};
        }
        throw SitePreviewError("nobody answers");
    };
    open();
    NewCloneView& sheet = openSheet();
    const NewCloneForm& form = sheet.session().form();
    button(u"Web App"_s)->click();
    QTest::keyClicks(field(u"Website URL"_s), u"mail.test"_s);
    button(u"Get Icon and Title"_s)->click();
    ASSERT_TRUE(eventually([&] { return sheet.session().checkedIcon().has_value(); }));
    QTest::keyClicks(field(u"Website URL"_s), u"x"_s);
    button(u"Get Icon and Title"_s)->click();
    ASSERT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }));
    stubs.model().setLastError(std::nullopt);
    ASSERT_TRUE(form.customIcon);
    EXPECT_TRUE(std::filesystem::exists(*form.customIcon)) << "it is still what the clone will get";
}

TEST_F(TargetPaneTest, WithoutATemporaryFolderNoSiteIsAsked) {
    stubs.previewSite = [](const std::string&, const std::filesystem::path&) {
        return SitePreview{"Mail", std::nullopt};
    };
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    QTest::keyClicks(field(u"Website URL"_s), u"mail.test"_s);
    {
        const ScopedEnvironment temporary("TMPDIR", "/proc");
        button(u"Get Icon and Title"_s)->click();
    }
    EXPECT_EQ(stubs.model().lastError(),
              "Couldn't ask the site: no folder can be made for its icon");
    EXPECT_FALSE(sheet.session().form().askingSite);
    EXPECT_EQ(stubs.sitesAsked, 0);
    stubs.model().setLastError(std::nullopt);
    button(u"Get Icon and Title"_s)->click();
    EXPECT_TRUE(eventually([&] { return stubs.sitesAsked == 1; })) << "there is one again";
    EXPECT_TRUE(eventually([&] { return !sheet.session().form().askingSite; }));
}

TEST_F(TargetPaneTest, AnAnswerAboutAnotherSiteIsIgnored) {
    stubs.previewSite = [](const std::string&, const std::filesystem::path&) {
        return SitePreview{"Late", std::nullopt};
    };
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    QTest::keyClicks(field(u"Website URL"_s), u"mail.test"_s);
    stubs.tasks->holding = true;
    button(u"Get Icon and Title"_s)->click();
    EXPECT_FALSE(button(u"Asking the site…"_s)->isEnabled());
    QTest::keyClicks(field(u"Website URL"_s), u"x"_s);
    stubs.tasks->release();
    EXPECT_TRUE(eventually([&] { return !sheet.session().form().askingSite; }));
    EXPECT_EQ(sheet.session().form().cloneName, "Mail.Testx");
}

TEST_F(TargetPaneTest, ACommandNamesItsCloneWhileItIsTyped) {
    open();
    NewCloneView& sheet = openSheet();
    button(u"Command"_s)->click();
    QLineEdit* command = field(u"Command"_s);
    QTest::keyClicks(command, u"/"_s);
    EXPECT_EQ(sheet.session().form().cloneName, "") << "the root names nothing";
    QTest::keyClicks(command, u"usr/local/bin/my-tool"_s);
    EXPECT_EQ(sheet.session().form().cloneName, "My-Tool");
}

TEST_F(TargetPaneTest, ANameTypedByHandStaysWhenOtherFieldsChange) {
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    QTest::keyClicks(field(u"Website URL"_s), u"mail.test"_s);
    QTest::keyClicks(field(u"Name"_s), u"!"_s);
    QTest::keyClicks(field(u"Website URL"_s), u"ing"_s);
    EXPECT_EQ(sheet.session().form().cloneName, "Mail.Test!");
    QTest::keyClick(field(u"Name"_s), Qt::Key_Backspace);
    QTest::keyClicks(field(u"Website URL"_s), u"s"_s);
    EXPECT_EQ(sheet.session().form().cloneName, "Mail.Test") << "the same name, but by hand";
    field(u"Name"_s)->clear();
    QTest::keyClicks(field(u"Website URL"_s), u".org"_s);
    EXPECT_EQ(sheet.session().form().cloneName, "Mail.Testings.Org");
}

TEST_F(TargetPaneTest, PanelsFillTheirFieldsAndCancellingChangesNothing) {
    std::optional<fs::path> answer;
    const auto panel = [&](QObject*) { return answer; };
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

TEST_F(TargetPaneTest, TheGridsColumnsStayWithinTheirWidths) {
    addApps();
    open();
    openSheet();
    const auto* grid = window->findChild<AppGrid*>();
    for (const int width : {760, 860, 980, 1100}) {
        window->resize(width, 690);
        QCoreApplication::processEvents();
        const QRect first = grid->visualRect(grid->model()->index(0, 0));
        EXPECT_GE(first.width() - AppTile::spacing, 92) << width;
        EXPECT_LE(first.width() - AppTile::spacing, 120) << width;
        EXPECT_EQ(grid->visualRect(grid->model()->index(1, 0)).left(), first.right() + 1);
    }
}

TEST_F(TargetPaneTest, ATilesTooltipExplainsItsLockAndHasItsWholeName) {
    stubs.installed = {{.url = "/Applications/Mail.app", .name = "Mail"},
                       {.url = "/Applications/L.app", .name = std::string(200, 'l')}};
    stubs.sandboxed = {"/Applications/Mail.app"};
    open();
    openSheet();
    (void)window->grab();
    ASSERT_TRUE(eventually([&] { return stubs.model().sandboxStatus().size() == 2; }));
    auto* grid = window->findChild<AppGrid*>();
    const auto tip = [&](int row, QPoint from) {
        return tooltipAt(grid, grid->visualRect(grid->model()->index(row, 0)).topLeft() + from);
    };
    const int middle = grid->visualRect(grid->model()->index(0, 0)).width() / 2;
    EXPECT_EQ(tip(0, {middle + 20, 8 + 10 + 44}),
              u"Sandboxed — you'll get a separate Dock icon, but macOS won't let Quorvel isolate "
              u"its data"_s);
    EXPECT_TRUE(eventually([&] { return tip(0, {middle - 20, 8 + 10 + 4}).isEmpty(); }));
    EXPECT_EQ(tip(1, {middle, 40}), QString(200, u'l'));
    QToolTip::hideText();
}

TEST_F(TargetPaneTest, ThePanelsOfACommandFillItsFields) {
    const auto answering = [](const char* path) {
        return [path](QObject*) { return std::optional<std::filesystem::path>(path); };
    };
    panels.file = answering("/usr/local/bin/my-tool");
    panels.folder = answering("/tmp");
    open();
    NewCloneView& sheet = openSheet();
    button(u"Command"_s)->click();
    EXPECT_TRUE(shown(u"Choose a command to run"_s));
    for (QPushButton* choose : window->findChildren<QPushButton*>()) {
        if (choose->isVisible() && QString(choose->text()).remove(u'&') == u"Choose…"_s) {
            choose->click();
        }
    }
    EXPECT_EQ(sheet.session().form().commandPathText, "/usr/local/bin/my-tool");
    EXPECT_EQ(sheet.session().form().cloneName, "My-Tool");
    EXPECT_EQ(sheet.session().form().workdir, "/tmp");
    EXPECT_EQ(field(u"Arguments"_s)->placeholderText(), u"Arguments (space-separated)"_s);
    EXPECT_EQ(field(u"Working directory"_s)->placeholderText(), u"Working directory (optional)"_s);
    EXPECT_TRUE(shown(u"Runs any executable/script with arguments, a working directory, and the "
                      u"environment variables below."_s));
}

TEST_F(TargetPaneTest, SwitchingTheKindKeepsEveryField) {
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    field(u"Website URL"_s)->setText(u"a.test"_s);
    button(u"File / Folder"_s)->click();
    field(u"File or Folder"_s)->setText(u"/a"_s);
    EXPECT_EQ(field(u"File or Folder"_s)->placeholderText(), u"No item selected"_s);
    button(u"Web App"_s)->click();
    EXPECT_EQ(sheet.session().form().filePath, "/a");
    EXPECT_EQ(field(u"Website URL"_s)->text(), u"a.test"_s);
    EXPECT_TRUE(shown(u"Opens in its own WebKit window with isolated cookies and logins — no "
                      u"Electron. Great for a second WhatsApp, Teams, or Gmail."_s));
}

} // namespace
} // namespace quorvel::testing
