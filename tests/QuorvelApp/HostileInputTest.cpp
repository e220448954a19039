#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/model/CloneListModel.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/panels/EditCloneView.h"
#include "tests/QuorvelApp/WindowFixture.h"
#include "tests/support/Sanitizer.h"

#include <QLabel>
#include <QListView>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

class HostileInputTest : public WindowTest {};

TEST_F(HostileInputTest, NamesFromFilesAreShownAsTheirCharacters) {
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

TEST_F(HostileInputTest, SurvivesTenThousandClones) {
    addClone("Real", minimalConfig(std::string(255, 'x')));
    for (int number = 1; number < 10000; ++number) {
        fs::create_directory_symlink("Real.app", folder / (std::to_string(number) + ".app"));
    }
    open();
    window->grab();
    EXPECT_EQ(stubs.model().clones().size(), 10000U);
    window->content().sidebar().select((folder / "5000.app").string());
    fs::remove(folder / "5000.app");
    stubs.model().reload();
    EXPECT_EQ(stubs.model().clones().size(), 9999U);
    EXPECT_TRUE(shown(u"Select a clone to manage it."_s));
}

TEST_F(HostileInputTest, ANameOfFileSizeFitsIntoWindowAndDialog) {
    const QString name(255, u'x');
    const InstanceRecord clone = addClone("x", minimalConfig(name.toStdString()));
    open().resize(MainWindow::smallest);
    select(clone);
    button(u"Delete"_s)->click();
    QCoreApplication::processEvents();
    EXPECT_EQ(window->content().size(), MainWindow::smallest);
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        if (label->isVisible()) {
            const QRect place(label->mapTo(window.get(), QPoint()), label->size());
            EXPECT_LE(place.right(), window->width()) << label->text().toStdString();
        }
    }
    for (const QString& text : {u"Delete Clone Only"_s, u"Cancel"_s}) {
        const QRect place(button(text)->mapTo(window.get(), QPoint()), button(text)->size());
        EXPECT_TRUE(window->rect().contains(place));
    }
}

// Laying out a megabyte would take minutes.
TEST_F(HostileInputTest, NoWidgetIsGivenAMegabyte) {
    const std::string megabyte(1000000, 'W'); // four fit into a configuration file
    InstanceConfig config = minimalConfig("x");
    config.displayName = megabyte;
    config.environment = {{"KEY", megabyte}};
    config.extraArgs = {megabyte};
    config.kind = ShortcutKind::web;
    config.url = "https://" + megabyte;
    const InstanceRecord clone = addClone("x", config);
    open();
    select(clone);
    button(u"Delete"_s)->click();
    (void)window->grab();
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        // Every character is followed by a mark.
        EXPECT_LE(label->text().size(), 2 * (longestDisplayText + 1));
        EXPECT_LE(label->accessibleName().size(), longestDisplayText + 100);
        EXPECT_LE(label->toolTip().size(), longestDisplayText + 100);
    }
    const QModelIndex row =
        window->content().sidebar().findChild<QListView*>()->model()->index(0, 0);
    for (const int role : {int(CloneListModel::NameRole), int(CloneListModel::SummaryRole),
                           int(Qt::AccessibleTextRole), int(Qt::AccessibleDescriptionRole)}) {
        EXPECT_EQ(row.data(role).toString().size(), longestDisplayLine + 1);
    }
}

TEST_F(HostileInputTest, ACloneOfAMegabyteIsEditedWithoutLosingAnyOfIt) {
    if (isThreadSanitized) {
        GTEST_SKIP() << "the sanitizer looks for a suppression for each byte that Qt hands over";
    }
    const std::string megabyte(1000000, 'W');
    InstanceConfig config = minimalConfig("x");
    config.kind = ShortcutKind::web;
    config.url = megabyte;
    config.environment = {{"KEY", megabyte}};
    config.extraArgs = {megabyte};
    const InstanceRecord clone = addClone("x", config);
    open();
    select(clone);
    command(u"Edit…"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return window->findChild<EditCloneView*>() != nullptr; }));
    button(u"Advanced options"_s)->click();
    (void)window->grab();
    EXPECT_TRUE(shown(u"Some variables are not shown here; they stay as they are."_s));
    EXPECT_TRUE(field(u"Website URL"_s)->isReadOnly()) << "it can't take the whole text";
    EXPECT_TRUE(field(u"Launch arguments"_s)->isReadOnly());
    field(u"Icon label"_s)->setText(u"X"_s);
    button(u"Save"_s)->click();
    ASSERT_TRUE(eventually([&] { return window->findChild<EditCloneView*>() == nullptr; }));
    EXPECT_FALSE(stubs.model().lastError());
    config.iconLabel = IconLabel{.text = "X", .colorHex = "#FFFFFF"};
    EXPECT_EQ(stubs.model().clone(clone.id())->config.json(), config.json());
}

TEST_F(HostileInputTest, TheSheetsShowAHostileNameAsItsCharacters) {
    const InstanceRecord clone = addClone("x", minimalConfig("<b>\u202ea"));
    open();
    select(clone);
    command(u"Edit…"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return shown(u"Edit “<b>\uFFFDa”"_s); }));
    button(u"Cancel"_s)->click();
    command(u"Duplicate…"_s)->trigger();
    EXPECT_TRUE(shown(u"Duplicate “<b>\uFFFDa”"_s));
    for (const QLabel* label : window->findChildren<QLabel*>()) {
        EXPECT_EQ(label->textFormat(), Qt::PlainText) << label->text().toStdString();
    }
}

TEST_F(HostileInputTest, ANameThatTurnsTheDirectionStaysWithinItsQuotes) {
    const InstanceRecord clone = addClone("x", minimalConfig("a\u202e\nb\x1b"
                                                             "c"));
    open();
    select(clone);
    const QString safe = u"a\uFFFD b\uFFFDc"_s;
    EXPECT_TRUE(shown(safe));
    const auto* list = window->content().sidebar().findChild<QListView*>();
    EXPECT_EQ(list->model()->index(0, 0).data(), safe);
    button(u"Delete"_s)->click();
    EXPECT_TRUE(shown(u"Delete “"_s + safe + u"”?"_s));
}

TEST_F(HostileInputTest, AnAppWithAHostileNameIsShownAndChosen) {
    stubs.installed = {{.url = "/Applications/x.app", .name = "<b>a\nb"},
                       {.url = "/Applications/y.app", .name = std::string(255, 'y')},
                       {.url = "/Applications/z.app", .name = "z\xff"}};
    open();
    NewCloneView& sheet = openSheet();
    const auto* grid = window->findChild<AppGrid*>();
    EXPECT_EQ(grid->model()->index(0, 0).data(), u"<b>a b"_s);
    for (int row = 0; row < 3; ++row) {
        choose(grid->model()->index(row, 0).data().toString());
        (void)window->grab();
        EXPECT_EQ(sheet.session().form().cloneName,
                  stubs.installed[static_cast<std::size_t>(row)].name + " (2)");
        EXPECT_EQ(window->findChild<ConfigurationPane*>()->width(), 300);
    }
}

TEST_F(HostileInputTest, EveryActionOnAMissingCloneIsReportedAndLosesNothing) {
    InstanceConfig config = minimalConfig("Work");
    config.shareUserFolders = false;
    const InstanceRecord work = addClone("Work", config);
    write(home / "QuorvelInstances/Work/Downloads/a", "mine");
    open();
    select(work);
    fs::remove_all(work.bundleURL);
    button(u"Reveal in Finder"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
    button(u"OK"_s)->click();
    stubs.workspace->openError = PlatformError(
        std::make_error_code(std::errc::no_such_file_or_directory), work.bundleURL, "opened");
    button(u"Launch"_s)->click();
    ASSERT_TRUE(eventually([&] {
        return shown(
            u"Couldn't launch: “Work.app” couldn’t be opened: no such file or directory"_s);
    }));
    button(u"OK"_s)->click();
    button(u"Move files to shared folders"_s)->click();
    button(u"Move Files & Share"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
    EXPECT_FALSE(shown(u"Done"_s));
    EXPECT_EQ(read(home / "Downloads/a"), "mine");
    button(u"OK"_s)->click();
    EXPECT_TRUE(shown(u"Create your first clone to get started."_s));
}

TEST_F(HostileInputTest, TwoProgramsOnOneFolderDoNotDisturbEachOther) {
    const InstanceRecord work = addClone("Work");
    addClone("Home");
    open();
    select(work);
    StubbedModel other(folder);
    MainWindow second(other.model(), updater, icons, panels);
    second.show();
    second.content().sidebar().select(work.id());
    stubs.model().remove(work, false);
    EXPECT_EQ(other.model().clones().size(), 2U) << "it has not looked yet";
    other.model().remove(work, false);
    EXPECT_FALSE(other.model().lastError()) << "it is gone, as was asked";
    EXPECT_EQ(other.model().clones().size(), 1U);
    EXPECT_TRUE(shows(&second, u"Select a clone to manage it."_s));
    addClone("New");
    stubs.model().reload();
    other.model().reload();
    EXPECT_EQ(stubs.model().clones(), other.model().clones());
}

TEST_F(HostileInputTest, AFullDiskIsReportedAndTheFormStays) {
    stubs.create = [](const auto&) -> fs::path {
        throw PlatformError(std::make_error_code(std::errc::no_space_on_device), "/x/runner",
                            "copied");
    };
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually(
        [&] { return shown(u"“runner” couldn’t be copied: no space left on device"_s); }));
    button(u"OK"_s)->click();
    EXPECT_EQ(sheet.session().form().cloneName, "Notes (2)");
    EXPECT_TRUE(button(u"Create Shortcut"_s)->isEnabled());
}

} // namespace
} // namespace quorvel::testing
