#include "tests/QuorvelApp/WindowFixture.h"
#include "tests/support/IconArtwork.h"

#include "LaunchKit/Icons/IcnsWriter.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <QTreeView>

#include <array>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

/// The real panels, each inspected and answered when it appears.
class SystemFilePanelsTest : public ::testing::Test {
protected:
    SystemFilePanelsTest() {
        write(folder / "file.txt", "x");
        fs::create_directories(folder / "inside");
    }

    /// Opens the panel, calls `act` with it as the user would use it, and returns the choice.
    std::optional<fs::path> use(const FilePanels::Panel& panel,
                                const std::function<void(QFileDialog&)>& act) {
        bool used = false;
        QTimer::singleShot(0, qApp, [&] {
            auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
            ASSERT_NE(dialog, nullptr);
            dialog->setDirectory(QString::fromStdString(folder.path().string()));
            used = true;
            act(*dialog);
            if (dialog->isVisible()) {
                dialog->reject();
            }
        });
        auto chosen = panel(nullptr);
        EXPECT_TRUE(used);
        return chosen;
    }

    static QPushButton* accept(const QFileDialog& dialog) {
        const auto* box = dialog.findChild<QDialogButtonBox*>();
        for (QAbstractButton* button : box->buttons()) {
            if (box->buttonRole(button) == QDialogButtonBox::AcceptRole) {
                return qobject_cast<QPushButton*>(button);
            }
        }
        return nullptr;
    }

    static QString prompt(const QFileDialog& dialog) { return accept(dialog)->text().remove(u'&'); }

    // Selects what has that name in the list, as a click does.
    static void selectItem(QFileDialog& dialog, const QString& name) {
        auto* view = dialog.findChild<QAbstractItemView*>(u"listView"_s);
        if (!view->isVisible()) {
            view = dialog.findChild<QAbstractItemView*>(u"treeView"_s);
        }
        QModelIndexList found;
        EXPECT_TRUE(eventually([&] {
            found = view->model()->match(view->model()->index(0, 0, view->rootIndex()),
                                         Qt::DisplayRole, name, 1, Qt::MatchExactly);
            return !found.isEmpty();
        }));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {},
                          view->visualRect(found.at(0)).center());
    }

    static void type(QFileDialog& dialog, const fs::path& path) {
        auto* field = dialog.findChild<QLineEdit*>(u"fileNameEdit"_s);
        field->clear();
        QTest::keyClicks(field, QString::fromStdString(path.string()));
    }

    TemporaryFolder folder;
    FilePanels panels = systemFilePanels();
};

TEST_F(SystemFilePanelsTest, KeepTheirTextsForAnySelection) {
    struct Case {
        const FilePanels::Panel& panel;
        QString prompt;
    };
    for (const Case& each : {Case{panels.fileOrFolder, u"Choose"_s}, Case{panels.file, u"Choose"_s},
                             Case{panels.folder, u"Choose"_s}, Case{panels.dataFolder, u"Choose"_s},
                             Case{panels.icon, u"Use Icon"_s}}) {
        const auto nothing = use(each.panel, [&](QFileDialog& dialog) {
            EXPECT_EQ(prompt(dialog), each.prompt);
            EXPECT_EQ(dialog.windowTitle(), each.prompt);
            selectItem(dialog, u"inside"_s);
            QCoreApplication::processEvents();
            EXPECT_EQ(prompt(dialog), each.prompt) << "a folder is selected";
            type(dialog, folder / "inside");
            QCoreApplication::processEvents();
            EXPECT_EQ(prompt(dialog), each.prompt) << "a folder is typed";
        });
        EXPECT_FALSE(nothing) << "it was cancelled";
    }
}

TEST_F(SystemFilePanelsTest, TakeFilesFoldersOrBoth) {
    const auto choosing = [&](const QString& name) {
        return [this, name](QFileDialog& dialog) {
            selectItem(dialog, name);
            accept(dialog)->click();
        };
    };
    EXPECT_EQ(use(panels.fileOrFolder, choosing(u"file.txt"_s)), folder / "file.txt");
    EXPECT_EQ(use(panels.fileOrFolder, choosing(u"inside"_s)), folder / "inside");
    EXPECT_EQ(use(panels.file, choosing(u"file.txt"_s)), folder / "file.txt");
    EXPECT_EQ(use(panels.file, choosing(u"inside"_s)), std::nullopt) << "that opens it";
    EXPECT_EQ(use(panels.folder, choosing(u"inside"_s)), folder / "inside");
    EXPECT_EQ(use(panels.dataFolder, choosing(u"inside"_s)), folder / "inside");
}

TEST_F(SystemFilePanelsTest, OffersToMakeAFolderOnlyForData) {
    const auto mayMake = [&](const FilePanels::Panel& panel) {
        bool may = false;
        use(panel, [&](QFileDialog& dialog) {
            may = !dialog.testOption(QFileDialog::ReadOnly) &&
                  dialog.findChild<QAbstractButton*>(u"newFolderButton"_s)->isEnabled();
            EXPECT_TRUE(dialog.testOption(QFileDialog::ShowDirsOnly));
        });
        return may;
    };
    EXPECT_TRUE(mayMake(panels.dataFolder));
    EXPECT_FALSE(mayMake(panels.folder));
}

TEST_F(SystemFilePanelsTest, ShowsIconFilesAloneWhereAnIconIsChosen) {
    use(panels.icon, [](QFileDialog& dialog) {
        EXPECT_EQ(dialog.nameFilters(), QStringList(u"Icons (*.icns)"_s));
        EXPECT_EQ(dialog.fileMode(), QFileDialog::ExistingFile);
    });
}

TEST_F(SystemFilePanelsTest, WriteNoSettings) {
    use(panels.file, [](QFileDialog&) {});
    QSettings remembered(QSettings::UserScope, u"QtProject"_s);
    remembered.setValue(u"FileDialog/lastVisited"_s, u"x"_s);
    remembered.sync();
    EXPECT_EQ(remembered.status(), QSettings::AccessError);
    EXPECT_FALSE(fs::exists(remembered.fileName().toStdString()));
}

/// The icon of a new clone.
class SystemFilePanelsTestIconChoice : public WindowTest {
protected:
    SystemFilePanelsTestIconChoice() {
        panels.icon = [this](QObject*) { return std::optional(answer); };
        write(good, icnsFile(std::array{icnsChunk(chatIcon(64))}));
    }

    [[nodiscard]] std::optional<fs::path> chosen() const { return sheet().form().customIcon; }

    [[nodiscard]] const NewCloneSession& sheet() const {
        return window->findChild<NewCloneView*>()->session();
    }

    void chooseIcon(const fs::path& file) {
        answer = file;
        button(u"Choose .icns…"_s)->click();
    }

    fs::path good = home / "good.icns";
    fs::path answer{};
};

TEST_F(SystemFilePanelsTestIconChoice, CountsAtOnceSoThatCreateTakesIt) {
    std::optional<fs::path> used;
    stubs.create = [&](const WrapperFactory::Request& request) {
        used = request.customIcon;
        return addWrapper("Made");
    };
    openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    stubs.tasks->holding = true;
    chooseIcon(good);
    EXPECT_EQ(chosen(), good);
    button(u"Create Shortcut"_s)->click();
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return cloneCount() == 1; }));
    EXPECT_EQ(used, good);
    EXPECT_FALSE(stubs.model().lastError());
}

TEST_F(SystemFilePanelsTestIconChoice, IsRefusedUnlessItIsAnIconFileAndTheChoiceBeforeReturns) {
    const fs::path script = home / "script.sh";
    write(script, "#!/bin/sh\nexit 0\n");
    const fs::path damaged = home / "damaged.icns";
    write(damaged, read(good).substr(0, 40));
    const fs::path drawing = home / "drawing.png";
    ASSERT_TRUE(chatIcon(100).save(QString::fromStdString(drawing.string())));
    const fs::path renamed = home / "renamed.icns";
    fs::copy_file(drawing, renamed);
    openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    for (const bool before : {false, true}) {
        if (before) {
            chooseIcon(good);
            ASSERT_TRUE(eventually([&] { return sheet().checkedIcon() == good; }));
        }
        for (const fs::path& bad :
             {script, damaged, drawing, renamed, home / "missing.icns", home.path()}) {
            chooseIcon(bad);
            ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); })) << bad;
            EXPECT_EQ(stubs.model().lastError(),
                      "Couldn't use the icon: " + bad.string() + " is not a readable .icns file");
            button(u"OK"_s)->click();
            EXPECT_EQ(chosen(), before ? std::optional(good) : std::nullopt);
        }
    }
}

TEST_F(SystemFilePanelsTestIconChoice, ARefusalThatComesAfterTheNextChoiceIsDropped) {
    const fs::path bad = home / "bad.icns";
    write(bad, "no icon");
    openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    stubs.tasks->holding = true;
    chooseIcon(bad);
    chooseIcon(good);
    stubs.tasks->release();
    EXPECT_FALSE(eventually([&] { return chosen() != good || stubs.model().lastError(); },
                            std::chrono::milliseconds(200)));
}

TEST_F(SystemFilePanelsTestIconChoice, AnotherAppBeginsWithoutOneAndReturnsToNone) {
    const fs::path bad = home / "bad.icns";
    write(bad, "no icon");
    openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    stubs.tasks->holding = true;
    chooseIcon(good);
    choose(u"Mail"_s);
    EXPECT_EQ(chosen(), std::nullopt);
    stubs.tasks->release();
    EXPECT_FALSE(eventually([&] { return chosen().has_value(); }, std::chrono::milliseconds(200)));
    chooseIcon(bad);
    ASSERT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }));
    EXPECT_EQ(chosen(), std::nullopt);
}

} // namespace
} // namespace quorvel::testing
