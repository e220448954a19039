#include "QuorvelApp/model/SystemTranslator.h"

#include "LaunchKit/InstanceRecord.h"
#include "Presentation/SystemWords.h"
#include "QuorvelApp/panels/EditCloneView.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QFile>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <gmock/gmock.h>

#include <set>
#include <utility>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;
using ::testing::_;
using ::testing::Contains;
using ::testing::ContainsRegex;
using ::testing::Each;
using ::testing::IsSupersetOf;
using ::testing::Not;
using ::testing::Pair;
using ::testing::SizeIs;
using ::testing::StartsWith;

// What only macOS has.
constexpr auto foreignWords = "Finder|\\bMacs?\\b|macOS|\\bDock\\b|[Mm]enu.[Bb]ar|⌘|"
                              "Application Support|\\bPreferences\\b";

using Texts = std::set<std::pair<std::string, std::string>>; // with their contexts

Texts textsOf(const QString& catalogue) {
    QFile file(catalogue);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    Texts texts;
    QXmlStreamReader xml(&file);
    std::string context;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) {
            continue;
        }
        if (xml.name() == u"name"_s) {
            context = xml.readElementText().toStdString();
        } else if (xml.name() == u"source"_s) {
            texts.emplace(context, xml.readElementText().toStdString());
        }
    }
    EXPECT_FALSE(xml.hasError());
    return texts;
}

std::vector<std::string> standardTexts(const QWidget* root) {
    std::vector<std::string> texts;
    for (QString text : shownTexts(root)) {
        texts.push_back(text.remove(QChar(0x200B)).toStdString());
    }
    return texts;
}

class SystemTranslatorTest : public WindowTest {
protected:
    SystemTranslatorTest() { QCoreApplication::installTranslator(&translator_); }
    ~SystemTranslatorTest() override { QCoreApplication::removeTranslator(&translator_); }

    void expectNoForeignWords(const QWidget* root) {
        EXPECT_THAT(standardTexts(root), Each(Not(ContainsRegex(foreignWords))));
    }

private:
    SystemTranslator translator_;
};

TEST_F(SystemTranslatorTest, ACloneIsShownInThisSystemsWords) {
    const InstanceRecord clone = addClone("Work");
    write(home / "QuorvelInstances/Work/Downloads/a", "a");
    open();
    select(clone);
    expectNoForeignWords(window.get());
    EXPECT_NE(button(u"Reveal in File Manager"_s), nullptr);
    EXPECT_THAT(
        standardTexts(window.get()),
        Contains("Files it saves are tucked inside its data folder. Move them into your own "
                 "folders and share them from now on — accounts and settings stay "
                 "isolated."));
    button(u"Move files to shared folders"_s)->click();
    expectNoForeignWords(window.get());
    button(u"Cancel"_s)->click();
    resultOf(stubs.model().migrateSharedFolders(addClone("Home")));
    EXPECT_EQ(stubs.model().statusMessage(), "“Home” now shares your Downloads, Documents & "
                                             "Desktop — nothing needed moving.");
}

TEST_F(SystemTranslatorTest, TheSheetIsShownInThisSystemsWords) {
    stubs.sandboxed = {"/Applications/Notes.app"};
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    ASSERT_TRUE(eventually([&] { return sheet.session().form().selectedSandboxed; }));
    button(u"Advanced options"_s)->click();
    expectNoForeignWords(&sheet);
    EXPECT_THAT(standardTexts(&sheet),
                IsSupersetOf({"Show a tray icon while running",
                              "Draws a short text badge on the icon to tell clones apart.",
                              "Show in the file manager's “Open With”"}));
    const auto* grid = window->findChild<AppGrid*>();
    const QModelIndex notes = grid->model()->index(1, 0);
    EXPECT_EQ(notes.data(Qt::AccessibleDescriptionRole),
              u"Sandboxed — you'll get a separate launcher, but the sandbox won't let Quorvel "
              u"isolate its data"_s);
    for (const QString& kind : {u"Web App"_s, u"File / Folder"_s, u"Command"_s}) {
        button(kind)->click();
        expectNoForeignWords(&sheet);
    }
}

TEST_F(SystemTranslatorTest, TheSheetThatEditsIsShownInThisSystemsWords) {
    const InstanceRecord clone = addClone("Work");
    open();
    select(clone);
    command(u"Edit…"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return window->findChild<EditCloneView*>() != nullptr; }));
    button(u"Advanced options"_s)->click();
    expectNoForeignWords(window.get());
}

TEST_F(SystemTranslatorTest, TheMenusAreInThisSystemsWords) {
    open();
    for (const QAction* menu : window->menuBar()->actions()) {
        for (const QAction* action : menu->menu()->actions()) {
            EXPECT_THAT(action->text().toStdString(), Not(ContainsRegex(foreignWords)));
        }
    }
}

// The texts as Qt's own tool finds them in the sources: also those that no other test shows.
TEST_F(SystemTranslatorTest, TheCatalogueHasEveryTextOfTheSourcesThatNamesMacOSAndNoOther) {
    const QString extractor = u"/usr/lib/qt6/bin/lupdate"_s;
    if (!QFileInfo::exists(extractor)) {
        GTEST_SKIP() << "lupdate is not installed";
    }
    const QString all = QString::fromStdString((home / "all.ts").string());
    QProcess tool;
    tool.setWorkingDirectory(QStringLiteral(QUORVEL_SOURCE_DIR));
    tool.start(extractor, {u"-silent"_s, u"-I"_s, u"."_s, u"-tr-function-alias"_s,
                           u"translate+=translatable,translate+=inSystemWords"_s, u"-extensions"_s,
                           u"cpp,h"_s, u"LaunchKit"_s, u"Presentation"_s, u"CommandLine"_s,
                           u"QuorvelApp"_s, u"-ts"_s, all});
    ASSERT_TRUE(tool.waitForFinished(120'000));
    ASSERT_EQ(tool.exitCode(), 0) << tool.readAllStandardError().toStdString();
    const Texts sources = textsOf(all);
    const Texts catalogue =
        textsOf(QStringLiteral(QUORVEL_SOURCE_DIR "/Presentation/quorvel_linux.ts"));
    EXPECT_THAT(sources, SizeIs(::testing::Gt(150)));
    EXPECT_THAT(sources, IsSupersetOf(catalogue)) << "what the sources no longer say";
    EXPECT_THAT(sources, Contains(Pair("EditedClone", StartsWith("“%1” has been changed"))));
    EXPECT_THAT(sources, Contains(Pair(_, "The clone at %1 is not there any more.")));
    EXPECT_THAT(sources, Contains(Pair(_, "The clone at %1 can’t be read back.")));
    for (const auto& [context, text] : sources) {
        EXPECT_THAT(inSystemWords(context.c_str(), text.c_str()), Not(ContainsRegex(foreignWords)))
            << context;
    }
}

} // namespace
} // namespace quorvel::testing
