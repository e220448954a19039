#include "LaunchKit/InstanceRecord.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QPlainTextEdit>
#include <QTest>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;

class NewCloneSheetTest : public WindowTest {};

TEST_F(NewCloneSheetTest, ASheetEndsWithEscapeAndStartsOver) {
    addApps();
    open();
    NewCloneView& sheet = openSheet();
    button(u"Web App"_s)->click();
    field(u"Website URL"_s)->setText(u"a.test"_s);
    QTest::keyClick(&sheet, Qt::Key_Escape);
    EXPECT_FALSE(window->content().showingNewClone());
    EXPECT_EQ(openSheet().session().form().webURL, "");
}

TEST_F(NewCloneSheetTest, CreatingShowsProgressAndThenClosesTheSheet) {
    stubs.create = [&](const auto& request) { return addWrapper(request.displayName); };
    openSheetWith(u"Notes"_s);
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    EXPECT_FALSE(button(u"Creating…"_s)->isEnabled());
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return !window->content().showingNewClone(); }));
    EXPECT_EQ(cloneCount(), 1U);
    EXPECT_EQ(stubs.workspace->opened.size(), 1U) << "launched, as the box says";
}

TEST_F(NewCloneSheetTest, ClosesBeforeItsCreationCountsAsEnded) {
    stubs.create = [&](const auto& request) { return addWrapper(request.displayName); };
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    // What the sandbox check finds may arrive at any time, and is a change too.
    bool wasCreating = false;
    std::vector<std::string> order;
    QObject::connect(&sheet, &QDialog::accepted, &sheet, [&] {
        order.push_back(sheet.session().form().creating ? "closed while creating" : "closed");
    });
    QObject::connect(&sheet.session(), &NewCloneSession::changed, &sheet, [&] {
        const bool creating = sheet.session().form().creating;
        if (wasCreating && !creating) {
            order.push_back("ended");
        }
        wasCreating = creating;
    });
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return order.size() == 2; }));
    EXPECT_EQ(order, (std::vector<std::string>{"closed while creating", "ended"}));
}

TEST_F(NewCloneSheetTest, EndsWhileAPanelIsOpenAndTheAnswerComesTooLate) {
    stubs.create = [&](const auto& request) { return addWrapper(request.displayName); };
    panels.fileOrFolder = [&](QObject*) -> std::optional<fs::path> {
        stubs.tasks->release();
        EXPECT_TRUE(eventually([&] { return window->findChildren<NewCloneView*>().isEmpty(); }));
        return "/late";
    };
    open();
    openSheet();
    button(u"File / Folder"_s)->click();
    field(u"File or Folder"_s)->setText(u"/etc/hosts"_s);
    field(u"Name"_s)->setText(u"Hosts"_s);
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    button(u"Browse…"_s)->click();
    EXPECT_FALSE(window->content().showingNewClone());
    EXPECT_EQ(cloneCount(), 1U);
}

TEST_F(NewCloneSheetTest, KeepsTheMnemonicsOfWhatItCovers) {
    const InstanceRecord& work = addClone("Work");
    open();
    window->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
    select(work);
    QTest::keyClick(window.get(), Qt::Key_L, Qt::AltModifier);
    ASSERT_TRUE(eventually([&] { return stubs.workspace->opened.size() == 1; }));
    NewCloneView& sheet = openSheet();
    QTest::keyClick(&sheet, Qt::Key_L, Qt::AltModifier);
    QTest::qWait(200); // a button that was pressed by its mnemonic is released a moment later
    EXPECT_EQ(stubs.workspace->opened.size(), 1U) << "the button is below";
}

TEST_F(NewCloneSheetTest, TakesTheEditorsTextAsItWasTyped) {
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    for (auto* editor : sheet.findChildren<QPlainTextEdit*>()) {
        editor->setPlainText(u"A=x\u00A0y\nB=2"_s);
    }
    EXPECT_EQ(sheet.session().form().envText, "A=x\u00A0y\nB=2");
}

TEST_F(NewCloneSheetTest, AFailedCreationKeepsTheFormAsItWas) {
    stubs.create = [](const auto&) -> fs::path {
        throw WrapperFactory::FactoryError::runnerNotFound();
    };
    NewCloneView& sheet = openSheetWith(u"Notes"_s);
    field(u"Name"_s)->setText(u"Mine"_s);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
    EXPECT_TRUE(shown(u"Could not locate the quorvel-runner binary to embed."_s));
    button(u"OK"_s)->click();
    EXPECT_EQ(sheet.session().form().cloneName, "Mine");
    EXPECT_TRUE(button(u"Create Shortcut"_s)->isEnabled());
}

TEST_F(NewCloneSheetTest, EditsDuringACreationDoNotReachTheRequest) {
    std::string made;
    stubs.create = [&](const auto& request) {
        made = request.displayName;
        return addWrapper(request.displayName);
    };
    openSheetWith(u"Notes"_s);
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    field(u"Name"_s)->setText(u"Late"_s);
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return !window->content().showingNewClone(); }));
    EXPECT_EQ(made, "Notes (2)");
}

TEST_F(NewCloneSheetTest, AFailureAfterTheSheetWasCancelledIsStillReported) {
    stubs.create = [](const auto&) -> fs::path {
        throw WrapperFactory::FactoryError::runnerNotFound();
    };
    openSheetWith(u"Notes"_s);
    stubs.tasks->holding = true;
    button(u"Create Shortcut"_s)->click();
    button(u"Cancel"_s)->click();
    ASSERT_TRUE(eventually([&] { return window->findChild<NewCloneView*>() == nullptr; }));
    stubs.tasks->release();
    EXPECT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }));
}

TEST_F(NewCloneSheetTest, WarnsOfACloneThatWouldBeReplaced) {
    addClone("Notes (2)");
    openSheetWith(u"Notes"_s);
    const QString warning = u"“Notes (2)” already exists. Creating this clone will replace it; its "
                            u"data is kept."_s;
    EXPECT_TRUE(shown(warning));
    field(u"Name"_s)->setText(u"Notes (3)"_s);
    EXPECT_FALSE(shown(warning));
    field(u"Name"_s)->setText(u" Notes (2) "_s);
    EXPECT_TRUE(shown(warning)) << "the name is trimmed";
    stubs.model().remove(stubs.model().clones().front(), false);
    EXPECT_FALSE(shown(warning)) << "it is gone";
}

TEST_F(NewCloneSheetTest, SaysThatWhatIsInThePlaceIsNotAClone) {
    const fs::path mine = makeAppBundle(folder / "Mine.app");
    const auto before = treeOf(mine);
    stubs.create = [](const WrapperFactory::Request& request) {
        return AppServices::system().createWrapper(request, {}, {});
    };
    open();
    openSheet();
    button(u"Web App"_s)->click();
    field(u"Website URL"_s)->setText(u"example.com"_s);
    field(u"Name"_s)->setText(u"Mine"_s);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
    EXPECT_EQ(stubs.model().lastError(),
              mine.string() + " is not a clone; choose another name or folder for the new one.");
    EXPECT_EQ(treeOf(mine), before);
    button(u"OK"_s)->click();
    field(u"Name"_s)->setText(u"Mine too"_s);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return !window->content().showingNewClone(); }));
    EXPECT_TRUE(stubs.model().registry().record(folder / "Mine too.app"));
}

TEST_F(NewCloneSheetTest, ACloneThatWasMadeSinceIsReplacedOnlyAfterTheWarning) {
    int made = 0;
    stubs.create = [&](const auto& request) {
        ++made;
        return addWrapper(request.displayName);
    };
    openSheetWith(u"Notes"_s);
    field(u"Name"_s)->setText(u"Work"_s);
    const fs::path wrapper = addWrapper("Work");
    const auto before = treeOf(wrapper);
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
    EXPECT_EQ(stubs.model().lastError(),
              "“Work” already exists at " + wrapper.string() + "; choose another name or folder.");
    EXPECT_EQ(made, 0);
    EXPECT_EQ(treeOf(wrapper), before);
    button(u"OK"_s)->click();
    EXPECT_TRUE(shown(u"“Work” already exists. Creating this clone will replace it; its data is "
                      u"kept."_s));
    button(u"Create Shortcut"_s)->click();
    ASSERT_TRUE(eventually([&] { return !window->content().showingNewClone(); }));
    EXPECT_EQ(made, 1);
}

} // namespace
} // namespace quorvel::testing
