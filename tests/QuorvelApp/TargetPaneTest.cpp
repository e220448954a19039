#include "tests/QuorvelApp/WindowFixture.h"

#include <QComboBox>
#include <QTest>

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

TEST_F(TargetPaneTest, AWebAddressNamesItsClone) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    EXPECT_TRUE(shown(u"Enter a website URL"_s));
    QTest::keyClicks(field(u"Website URL"_s), u"www.a.test"_s);
    EXPECT_FALSE(sheet.session().form().cloneName.empty());
    EXPECT_FALSE(shown(u"Enter a website URL"_s));
    EXPECT_FALSE(window->findChild<QComboBox*>()->isVisible()) << "no strategy for a website";
}

TEST_F(TargetPaneTest, PanelsFillTheirFieldsAndCancellingChangesNothing) {
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

} // namespace
} // namespace quorvel::testing
