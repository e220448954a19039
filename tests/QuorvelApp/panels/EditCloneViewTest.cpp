#include "QuorvelApp/panels/EditCloneView.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "tests/QuorvelApp/UnusualClones.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QComboBox>
#include <QPlainTextEdit>
#include <QTest>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using ::testing::HasSubstr;

class EditCloneViewTest : public WindowTest {
protected:
    EditCloneView& edit(const InstanceRecord& record) {
        if (!window) {
            open();
        }
        stubs.model().reload();
        select(record);
        command(u"Edit…"_s)->trigger();
        EXPECT_TRUE(eventually([&] { return sheet() != nullptr; }));
        return *sheet();
    }

    EditCloneView& editNew(const WrapperFactory::Request& request) {
        return edit(makeClone(request));
    }

    EditCloneView* sheet() { return window->findChild<EditCloneView*>(); }
    bool isGone() {
        return eventually([&] { return sheet() == nullptr; });
    }

    static WrapperFactory::Request web() {
        WrapperFactory::Request request;
        request.kind = ShortcutKind::web;
        request.displayName = "Work";
        request.url = "a.test";
        return request;
    }

    [[nodiscard]] InstanceConfig configOf(const std::string& name) {
        return stubs.model().registry().record(folder / (name + ".app")).value().config;
    }

    void expectFailure(const QString& text) {
        ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
        EXPECT_TRUE(shown(text)) << stubs.model().lastError().value_or("");
        button(u"OK"_s)->click();
        ASSERT_NE(sheet(), nullptr);
        EXPECT_EQ(field(u"Website URL"_s)->text(), u"b.test"_s);
        EXPECT_TRUE(button(u"Save"_s)->isEnabled());
    }
};

TEST_F(EditCloneViewTest, OpenedAndClosedItChangesNoByteOfAnUnusualClone) {
    for (const ShortcutKind kind : allCases<ShortcutKind>()) {
        const std::string name(rawString(kind));
        WrapperFactory::Request request = unusualRequest(kind);
        if (kind == ShortcutKind::app) {
            request.targetApp = makeAppBundle(home / "Thing.app");
        }
        const InstanceRecord record = makeClone(request);
        const auto before = treeOf(record.bundleURL);
        EditCloneView& view = edit(record);
        button(u"Advanced options"_s)->click();
        EXPECT_FALSE(button(u"Save"_s)->isEnabled()) << name;
        // Each control shows the form again, as typing elsewhere makes it do.
        view.session().edit([](NewCloneForm& form) { form.hideDockIcon = !form.hideDockIcon; });
        EXPECT_TRUE(button(u"Save"_s)->isEnabled()) << name;
        view.session().edit([](NewCloneForm& form) { form.hideDockIcon = !form.hideDockIcon; });
        EXPECT_FALSE(button(u"Save"_s)->isEnabled()) << name;
        view.session().save();
        EXPECT_FALSE(view.session().form().creating);
        QTest::keyClick(&view, Qt::Key_Escape);
        ASSERT_TRUE(isGone());
        EXPECT_EQ(treeOf(record.bundleURL), before) << name;
        fs::remove_all(record.bundleURL);
    }
}

TEST_F(EditCloneViewTest, EachControlChangesWhatItShowsAndNothingElse) {
    WrapperFactory::Request request = unusualRequest(ShortcutKind::command);
    const InstanceRecord record = makeClone(request);
    InstanceConfig expected = record.config;
    EditCloneView& view = edit(record);
    button(u"Advanced options"_s)->click();
    field(u"Command"_s)->setText(u"/bin/false"_s);
    expected.commandPath = "/bin/false";
    field(u"Arguments"_s)->setText(field(u"Arguments"_s)->text() + u" \"c d\""_s);
    expected.commandArgs.emplace_back("c d");
    field(u"Working directory"_s)->clear();
    expected.workingDirectory.reset();
    field(u"Launch arguments"_s)->setText(u"--x"_s);
    expected.extraArgs = {"--x"};
    field(u"Icon label"_s)->setText(u"NEW"_s);
    expected.iconLabel->text = "NEW";
    for (auto* editor : view.findChildren<QPlainTextEdit*>()) {
        editor->appendPlainText(u"Z=1"_s);
    }
    expected.environment["Z"] = "1";
    expected.infoPlistOverrides["Z"] = "1";
    checkBox(&view, u"Register as a browser / URL handler"_s)->toggle();
    expected.registerAsBrowser = !expected.registerAsBrowser;
    for (auto* choices : view.findChildren<QComboBox*>()) {
        if (choices->accessibleName() == u"Position of the label"_s) {
            EXPECT_EQ(choices->currentText(), u"Top"_s);
            choices->setCurrentIndex(choices->findText(u"Center"_s));
        }
    }
    expected.iconLabel->position = IconLabel::Position::center;
    button(u"Save"_s)->click();
    ASSERT_TRUE(isGone());
    EXPECT_EQ(configOf("Odd").json(), expected.json());
    EXPECT_EQ(stubs.model().clone(record.id())->config.json(), expected.json()) << "listed again";
}

TEST_F(EditCloneViewTest, KindTargetNameAndDataFolderAreShownOnly) {
    WrapperFactory::Request request;
    request.displayName = "Work";
    request.targetApp = makeAppBundle(home / "Thing.app");
    EditCloneView& view = editNew(request);
    button(u"Advanced options"_s)->click();
    EXPECT_TRUE(shown(u"Edit “Work”"_s));
    EXPECT_TRUE(shown(u"Thing"_s)) << "the app's name";
    EXPECT_TRUE(shown(u"Saved to ~/Applications/Work.app"_s));
    EXPECT_EQ(view.findChild<AppGrid*>(), nullptr);
    EXPECT_TRUE(field(u"Name"_s)->isReadOnly());
    EXPECT_TRUE(field(u"Data location"_s)->isReadOnly());
    EXPECT_EQ(field(u"Data location"_s)->text(), u"~/QuorvelInstances/Work"_s);
    for (const char* text : {"Create Shortcut", "File / Folder", "Choose…"}) {
        EXPECT_THROW((void)button(QString::fromUtf8(text)), std::runtime_error) << text;
    }
    EXPECT_THROW((void)checkBox(&view, u"Launch after creating"_s), std::runtime_error);
}

TEST_F(EditCloneViewTest, ATargetThatChangesNamesNothing) {
    EditCloneView& view = editNew(web());
    view.session().edit([](NewCloneForm& form) { form.cloneName.clear(); });
    field(u"Website URL"_s)->setText(u"www.other.test"_s);
    view.session().edit([](NewCloneForm& form) { form.siteNamed("Other"); });
    EXPECT_EQ(view.session().form().cloneName, "");
}

TEST_F(EditCloneViewTest, InvalidInputCantBeSaved) {
    editNew(web());
    button(u"Advanced options"_s)->click();
    field(u"Website URL"_s)->setText(u" "_s);
    EXPECT_FALSE(button(u"Save"_s)->isEnabled());
    field(u"Website URL"_s)->setText(u"b.test"_s);
    EXPECT_TRUE(button(u"Save"_s)->isEnabled());
    field(u"Launch arguments"_s)->setText(u"\"open"_s);
    EXPECT_FALSE(button(u"Save"_s)->isEnabled());
}

TEST_F(EditCloneViewTest, SavesInTheBackgroundOnReturn) {
    EditCloneView& view = editNew(web());
    EXPECT_EQ(window->focusWidget(), field(u"Website URL"_s)) << "the first that can be edited";
    QTest::keyClicks(window->focusWidget(), u"/x"_s);
    stubs.tasks->holding = true;
    QTest::keyClick(window->focusWidget(), Qt::Key_Return);
    EXPECT_FALSE(button(u"Saving…"_s)->isEnabled());
    EXPECT_FALSE(button(u"Cancel"_s)->isEnabled());
    QTest::keyClick(&view, Qt::Key_Escape);
    EXPECT_TRUE(view.isVisible()) << "it can't be cancelled any more";
    EXPECT_EQ(configOf("Work").url, "a.test");
    stubs.tasks->release();
    ASSERT_TRUE(isGone());
    EXPECT_EQ(configOf("Work").url, "a.test/x");
    EXPECT_FALSE(stubs.model().statusMessage()) << "nothing needs to be said";
}

TEST_F(EditCloneViewTest, SaysThatARunningCloneChangesAtItsNextStart) {
    const InstanceRecord record = makeClone(web());
    const auto lock = lockHome(record.config);
    edit(record);
    field(u"Website URL"_s)->setText(u"b.test"_s);
    button(u"Save"_s)->click();
    ASSERT_TRUE(eventually([&] { return shown(u"Done"_s); }));
    EXPECT_TRUE(shown(u"“Work” is running. The change takes effect at its next start."_s));
    EXPECT_EQ(configOf("Work").url, "b.test");
}

TEST_F(EditCloneViewTest, ACloneThatIsGoneIsAnErrorAndNothingIsLost) {
    const InstanceRecord record = makeClone(web());
    edit(record);
    field(u"Website URL"_s)->setText(u"b.test"_s);
    fs::remove_all(record.bundleURL);
    button(u"Save"_s)->click();
    expectFailure(u"Couldn't save: The clone at %1 is not there any more."_s.arg(
        QString::fromStdString(record.id())));
    EXPECT_EQ(cloneCount(), 0U) << "the list says so, too";
}

TEST_F(EditCloneViewTest, ACloneThatWasChangedMeanwhileIsAnErrorAndNothingIsLost) {
    const InstanceRecord record = makeClone(web());
    edit(record);
    field(u"Website URL"_s)->setText(u"b.test"_s);
    (void)editClone(record.bundleURL, [](CloneSettings& s) { s.config.url = "c.test"; });
    button(u"Save"_s)->click();
    expectFailure(
        u"Couldn't save: “Work” has been changed in the meantime. Close this sheet and edit the "
        u"clone again; nothing was saved."_s);
    EXPECT_EQ(configOf("Work").url, "c.test");
}

TEST_F(EditCloneViewTest, ACloneThatCantBeWrittenKeepsTheSheet) {
    const InstanceRecord record = makeClone(web());
    fs::rename(record.bundleURL / "Contents/Resources", home / "Resources");
    fs::create_directory_symlink(home / "Resources", record.bundleURL / "Contents/Resources");
    edit(record);
    field(u"Website URL"_s)->setText(u"b.test"_s);
    button(u"Save"_s)->click();
    expectFailure(
        u"Couldn't save: “Contents/Resources” in the clone is a symbolic link, so the clone "
        u"can’t be changed. Replace the link with what it leads to first."_s);
    EXPECT_EQ(configOf("Work").url, "a.test");
}

TEST_F(EditCloneViewTest, ACloneThatIsGoneBeforeItIsReadIsAnError) {
    const InstanceRecord record = makeClone(web());
    open();
    select(record);
    fs::remove_all(record.bundleURL);
    command(u"Edit…"_s)->trigger();
    ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
    EXPECT_THAT(stubs.model().lastError().value_or(""), HasSubstr(" is not there any more."));
    EXPECT_EQ(sheet(), nullptr);
}

TEST_F(EditCloneViewTest, NothingElseIsDoneWhileTheCloneIsRead) {
    const InstanceRecord record = makeClone(web());
    open();
    select(record);
    stubs.tasks->holding = true;
    command(u"Edit…"_s)->trigger();
    EXPECT_FALSE(command(u"Rename…"_s)->isEnabled());
    EXPECT_FALSE(command(u"Delete…"_s)->isEnabled());
    command(u"New Clone…"_s)->trigger();
    EXPECT_FALSE(window->content().showingNewClone());
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return sheet() != nullptr; }));
    EXPECT_FALSE(window->content().showingNewClone());
    button(u"Cancel"_s)->click();
    EXPECT_TRUE(window->content().showingNewClone()) << "asked for before the sheet showed";
    ASSERT_TRUE(isGone());
    button(u"Cancel"_s)->click();
    EXPECT_TRUE(command(u"Rename…"_s)->isEnabled());
}

TEST_F(EditCloneViewTest, OpensOnceAndNotOverTheNewCloneSheet) {
    const InstanceRecord record = makeClone(web());
    edit(record);
    window->content().showNewClone();
    EXPECT_FALSE(window->content().showingNewClone());
    button(u"Cancel"_s)->click();
    ASSERT_TRUE(isGone());
    window->content().showNewClone();
    EXPECT_TRUE(window->content().showingNewClone());
    EXPECT_FALSE(command(u"Edit…"_s)->isEnabled());
}

} // namespace
} // namespace quorvel::testing
