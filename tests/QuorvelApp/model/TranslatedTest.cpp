#include "QuorvelApp/model/Translated.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/newclone/AppPicker.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "QuorvelApp/widgets/SystemFilePanels.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QApplication>
#include <QFileDialog>
#include <QListView>
#include <QMenuBar>
#include <QTimer>
#include <QTranslator>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;
using ::testing::Contains;
using ::testing::Each;
using ::testing::IsEmpty;
using ::testing::StartsWith;

// A catalogue that has every text, with a mark around it.
class MarkingTranslator final : public QTranslator {
public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char*, const char* text, const char*,
                                    int) const override {
        return u'«' + QString::fromUtf8(text) + u'»';
    }
};

class TranslatedTest : public WindowTest {
protected:
    TranslatedTest() { QCoreApplication::installTranslator(&translator_); }
    ~TranslatedTest() override { QCoreApplication::removeTranslator(&translator_); }

    // The texts in `root` that no catalogue could change, but for the user's own data.
    static std::vector<std::string> untranslated(const QWidget* root) {
        static const QStringList data{u"Quorvel"_s,      u"Work"_s,
                                      u"Notes"_s,        u"Notes (2)"_s,
                                      u"--flag value"_s, u"/usr/bin/…"_s,
                                      u"example.com"_s,  u"#ffffff"_s,
                                      u"A=1"_s,          u"app.quorvel.instance.work"_s};
        std::vector<std::string> found;
        for (QString text : shownTexts(root)) {
            text.remove(QChar(0x200B));
            const bool path = text.startsWith(u'/') || text.startsWith(u'~');
            if (!text.contains(u'«') && !data.contains(text) && !path) {
                found.push_back(text.toStdString());
            }
        }
        return found;
    }

    const QWidget* message() { return window->findChildren<MessageSheet*>().constLast(); }

private:
    MarkingTranslator translator_;
};

TEST_F(TranslatedTest, ATextOfALowerLayerIsLookedUp) {
    EXPECT_EQ(translated("Any", "Kind"), "«Kind»");
    EXPECT_EQ(sentence(u"%2 of %1"_s, {"a", "%1"}), "%1 of a");
}

TEST_F(TranslatedTest, TheEmptyWindowIsTranslated) {
    open();
    EXPECT_THAT(untranslated(window.get()), IsEmpty());
    EXPECT_TRUE(shown(u"«No clones yet»"_s));
    EXPECT_TRUE(shown(u"«Create your first clone to get started.»"_s));
    for (const QAction* menu : window->menuBar()->actions()) {
        EXPECT_TRUE(menu->text().startsWith(u'«')) << menu->text().toStdString();
        for (const QAction* action : menu->menu()->actions()) {
            EXPECT_TRUE(action->isSeparator() || action->text().startsWith(u'«'))
                << action->text().toStdString();
        }
    }
}

TEST_F(TranslatedTest, ACloneAndItsDetailsAreTranslated) {
    const InstanceRecord clone = addClone("Work");
    write(home / "QuorvelInstances/Work/Downloads/a", "a");
    stubs.workspace->setRunning({clone.config.bundleId});
    open();
    select(clone);
    EXPECT_THAT(untranslated(window.get()), IsEmpty());
    EXPECT_TRUE(shown(u"«Running»"_s));
    std::vector<std::string> labels;
    std::vector<std::string> values;
    for (const InfoRow* row : window->findChildren<InfoRow*>()) {
        labels.push_back(row->label().toStdString());
        values.push_back(row->value().toStdString());
    }
    EXPECT_THAT(labels, Each(StartsWith("«")));
    EXPECT_THAT(labels, Contains("«Data home»"));
    EXPECT_THAT(values, Contains("«App»"));
    EXPECT_THAT(values, Contains("«Home override (A)»"));
    const QModelIndex row = window->findChild<QListView*>(u"clones"_s)->model()->index(0, 0);
    EXPECT_EQ(row.data(Qt::AccessibleTextRole), u"«Work, Running»"_s);
}

TEST_F(TranslatedTest, TheQuestionsAboutACloneAreTranslated) {
    const InstanceRecord clone = addClone("Work");
    write(home / "QuorvelInstances/Work/Downloads/a", "a");
    stubs.workspace->setRunning({clone.config.bundleId});
    open();
    select(clone);
    button(u"«Move files to shared folders»"_s)->click();
    EXPECT_THAT(untranslated(message()), IsEmpty());
    button(u"«Cancel»"_s)->click();
    button(u"«Delete»"_s)->click();
    EXPECT_EQ(message()->windowTitle(), u"«Delete “Work”?»"_s);
    EXPECT_THAT(untranslated(message()), IsEmpty());
    button(u"«Delete Clone and Its Data»"_s)->click();
    EXPECT_EQ(message()->windowTitle(), u"«“Work” is running»"_s);
    EXPECT_THAT(untranslated(message()), IsEmpty());
}

TEST_F(TranslatedTest, AlertsAndTheirMessagesAreTranslated) {
    const InstanceRecord clone = addClone("Work");
    write(home / "QuorvelInstances/Work/Downloads/a", "a");
    open();
    resultOf(stubs.model().migrateSharedFolders(clone));
    EXPECT_EQ(stubs.model().statusMessage(), "«Moved «1 from Downloads» into your shared folders.» "
                                             "«“Work” now saves there.»");
    EXPECT_EQ(message()->windowTitle(), u"«Done»"_s);
    EXPECT_THAT(untranslated(message()), IsEmpty());
    stubs.scanError = "out of memory";
    stubs.model().loadCatalog();
    ASSERT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }));
    EXPECT_EQ(stubs.model().lastError(), "«Couldn't scan your apps: out of memory»");
    EXPECT_EQ(message()->windowTitle(), u"«Something went wrong»"_s);
}

TEST_F(TranslatedTest, TheAboutPanelIsTranslated) {
    open();
    command(u"«About Quorvel»"_s)->trigger();
    EXPECT_EQ(message()->windowTitle(), u"«About Quorvel»"_s);
    EXPECT_THAT(untranslated(message()), IsEmpty());
}

TEST_F(TranslatedTest, TheNewCloneSheetIsTranslatedForEachKind) {
    stubs.sandboxed = {"/Applications/Notes.app"};
    addClone("Notes (2)");
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    ASSERT_TRUE(eventually([&] { return sheet.session().form().selectedSandboxed; }));
    button(u"«Advanced options»"_s)->click();
    EXPECT_THAT(untranslated(&sheet), IsEmpty());
    EXPECT_TRUE(shown(u"«“Notes (2)” already exists. Creating this clone will replace it; its data "
                      u"is kept.»"_s));
    EXPECT_THAT(sheet.session().form().strategyReason, StartsWith("«“Notes” is sandboxed"));
    for (const QString& kind : {u"«Web App»"_s, u"«File / Folder»"_s, u"«Command»"_s}) {
        button(kind)->click();
        EXPECT_THAT(untranslated(&sheet), IsEmpty()) << kind.toStdString();
        sheet.session().edit([](NewCloneForm& form) {
            form.webURL = "example.com";
            form.filePath = "/tmp";
            form.commandPathText = "/bin/ls";
        });
        EXPECT_THAT(untranslated(&sheet), IsEmpty()) << kind.toStdString();
    }
}

TEST_F(TranslatedTest, TheAppPickersStatesAreTranslated) {
    open();
    NewCloneView& sheet = openSheet();
    EXPECT_TRUE(shown(u"«No apps found.»"_s));
    sheet.session().edit([](NewCloneForm& form) { form.search = "xyz"; });
    EXPECT_TRUE(shown(u"«No apps match “xyz”.»"_s));
    sheet.session().edit([](NewCloneForm& form) { form.detected(Strategy::wrapperIdentity); });
    EXPECT_EQ(sheet.session().form().detectNote, "«Detected: «Wrapper identity (C)».»");
}

TEST_F(TranslatedTest, TheFilePanelsAreTranslated) {
    bool looked = false;
    QTimer::singleShot(0, qApp, [&] {
        auto* dialog = qobject_cast<QFileDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(dialog->windowTitle(), u"«Use Icon»"_s);
        EXPECT_EQ(dialog->nameFilters(), QStringList(u"«Icons (*.icns)»"_s));
        looked = true;
        dialog->reject();
    });
    EXPECT_EQ(systemFilePanels().icon(nullptr), std::nullopt);
    EXPECT_TRUE(looked);
}

} // namespace
} // namespace quorvel::testing
