#include "QuorvelApp/panels/DuplicateView.h"

#include "LaunchKit/Changes/CloneChange.h"
#include "LaunchKit/Changes/ClonesLock.h"
#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/widgets/ProgressSheet.h"
#include "tests/QuorvelApp/UnusualClones.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QProgressBar>
#include <QSignalSpy>
#include <QTest>

#include <csignal>
#include <gmock/gmock.h>
#include <sys/resource.h>

namespace quorvel::testing {
namespace {

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

// Limits the size of every file that this process writes.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limit{bytes, old_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        ::setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, handler_);
    }

private:
    rlimit old_{};
    void (*handler_)(int);
};

class DuplicateViewTest : public WindowTest {
protected:
    DuplicateViewTest() {
        WrapperFactory::Request request;
        request.kind = ShortcutKind::command;
        request.commandPath = "/bin/true";
        request.displayName = "Work";
        original = makeClone(request);
        write(data("Work") / "deep/file", "12345");
    }

    DuplicateView& ask() {
        if (!window) {
            open();
        }
        stubs.model().reload();
        select(original);
        command(u"Duplicate…"_s)->trigger();
        EXPECT_NE(panel(), nullptr);
        return *panel();
    }

    DuplicateView& askWithData() {
        DuplicateView& view = ask();
        view.findChild<QCheckBox*>()->setChecked(true);
        return view;
    }

    DuplicateView* panel() { return window->findChild<DuplicateView*>(); }
    bool isGone() {
        return eventually([&] { return panel() == nullptr; });
    }
    [[nodiscard]] fs::path data(const std::string& name) const {
        return home / "QuorvelInstances" / name;
    }

    // That nothing was made, and that the panel asks again.
    void expectFailure(const std::string& text) {
        ASSERT_TRUE(eventually([&] { return shown(u"Something went wrong"_s); }));
        EXPECT_THAT(stubs.model().lastError().value_or(""), HasSubstr(text));
        button(u"OK"_s)->click();
        ASSERT_NE(panel(), nullptr);
        EXPECT_TRUE(button(u"Duplicate"_s)->isEnabled());
        expectOnlyTheOriginal();
    }

    void expectOnlyTheOriginal() {
        std::set<std::string> names;
        for (const fs::path& place : {folder, home / "QuorvelInstances"}) {
            for (const auto& entry : fs::directory_iterator(place)) {
                names.insert(entry.path().filename().string());
            }
        }
        EXPECT_EQ(names, (std::set<std::string>{"Work", "Work.app"}));
        EXPECT_EQ(read(data("Work") / "deep/file"), "12345");
    }

    InstanceRecord original;
};

TEST_F(DuplicateViewTest, AsksForTheNextFreeNameAndIsCancelledByEscape) {
    DuplicateView& view = ask();
    EXPECT_EQ(window->focusWidget(), field(u"Name"_s));
    EXPECT_EQ(field(u"Name"_s)->selectedText(), u"Work (2)"_s);
    EXPECT_FALSE(view.findChild<QCheckBox*>()->isChecked());
    QTest::keyClick(window->focusWidget(), Qt::Key_Escape);
    ASSERT_TRUE(isGone());
    expectOnlyTheOriginal();
    fs::create_directories(data("Work (2)"));
    fs::create_directories(folder / "Work (3).app");
    addClone("elsewhere", minimalConfig("Work (4)"));
    ask();
    EXPECT_EQ(field(u"Name"_s)->text(), u"Work (5)"_s) << "folders and clones of any kind count";
}

TEST_F(DuplicateViewTest, WithoutDataItMakesAnEmptyCloneAndSelectsIt) {
    ask();
    QTest::keyClick(window->focusWidget(), Qt::Key_Return);
    ASSERT_TRUE(isGone());
    const auto made = stubs.model().registry().record(folder / "Work (2).app");
    ASSERT_TRUE(made);
    EXPECT_EQ(made->config.commandPath, "/bin/true");
    EXPECT_FALSE(fs::exists(data("Work (2)") / "deep"));
    EXPECT_EQ(window->content().sidebar().selection(), made->id());
    EXPECT_FALSE(stubs.model().statusMessage());
}

TEST_F(DuplicateViewTest, WithDataItSaysHowThatWasCopiedAndWhatItTook) {
    write(data("Work") / "names", data("Work").string());
    askWithData();
    field(u"Name"_s)->setText(u" Second "_s);
    button(u"Duplicate"_s)->click();
    ASSERT_TRUE(isGone());
    ASSERT_TRUE(eventually([&] { return shown(u"Done"_s); }));
    const std::string message = stubs.model().statusMessage().value_or("");
    EXPECT_THAT(message, StartsWith("2 files with "));
    EXPECT_THAT(message, AnyOf(HasSubstr(" were copied; that took "), HasSubstr(" were cloned; ")));
    EXPECT_THAT(message, HasSubstr("\n1 file of the copy names the original’s data folder and may "
                                   "lead there:\n  names"));
    EXPECT_EQ(read(data("Second") / "deep/file"), "12345");
    EXPECT_EQ(window->findChild<ProgressSheet*>(), nullptr);
}

TEST_F(DuplicateViewTest, TheBoxSaysHowMuchDataThereIs) {
    const QCheckBox* box = ask().findChild<QCheckBox*>();
    EXPECT_TRUE(eventually([&] { return box->text() == u"Copy the &data (5 bytes)"_s; }))
        << box->text().toStdString();
}

TEST_F(DuplicateViewTest, ShowsHowFarTheCopyIs) {
    QStringList texts;
    int value = 0;
    DuplicateView& view = askWithData();
    QObject::connect(&view.session(), &DuplicateSession::copyBegan, window.get(),
                     [&](BackgroundCopy* copy) {
                         auto* progress = window->findChild<ProgressSheet*>();
                         QObject::connect(copy, &BackgroundCopy::changed, progress, [&, progress] {
                             texts << progress->accessibleDescription();
                             value = progress->findChild<QProgressBar*>()->value();
                         });
                     });
    stubs.tasks->holding = true;
    button(u"Duplicate"_s)->click();
    EXPECT_TRUE(shown(u"Copying the data…"_s));
    EXPECT_FALSE(button(u"Duplicating…"_s)->isEnabled());
    stubs.tasks->release();
    ASSERT_TRUE(isGone());
    EXPECT_EQ(texts.value(texts.size() - 1), u"3 of 3 items, 5 bytes of 5 bytes"_s)
        << "the lock counts too";
    EXPECT_EQ(value, 1000);
}

TEST_F(DuplicateViewTest, CancellingLeavesNothingBehindAndAsksAgain) {
    askWithData();
    field(u"Name"_s)->setText(u"Second"_s);
    stubs.tasks->holding = true;
    button(u"Duplicate"_s)->click();
    QTest::keyClick(window->findChild<ProgressSheet*>(), Qt::Key_Escape);
    EXPECT_FALSE(button(u"Cancelling…"_s)->isEnabled());
    stubs.tasks->release();
    ASSERT_TRUE(eventually([&] { return window->findChild<ProgressSheet*>() == nullptr; }));
    EXPECT_FALSE(stubs.model().lastError());
    EXPECT_EQ(field(u"Name"_s)->text(), u"Second"_s);
    EXPECT_TRUE(button(u"Duplicate"_s)->isEnabled());
    expectOnlyTheOriginal();
    button(u"Duplicate"_s)->click();
    ASSERT_TRUE(isGone()) << "now it is made";
    EXPECT_EQ(read(data("Second") / "deep/file"), "12345");
}

TEST_F(DuplicateViewTest, AnErrorThatComesBeforeTheCancellationIsStillReported) {
    askWithData();
    field(u"Name"_s)->setText(u"Work"_s);
    stubs.tasks->holding = true;
    button(u"Duplicate"_s)->click();
    QTest::keyClick(window->findChild<ProgressSheet*>(), Qt::Key_Escape);
    stubs.tasks->release();
    expectFailure("Couldn't duplicate: “Work” already exists at ");
}

TEST_F(DuplicateViewTest, AWindowThatClosesCancelsTheCopy) {
    askWithData();
    stubs.tasks->holding = true;
    button(u"Duplicate"_s)->click();
    window.reset();
    stubs.dropModel();
    stubs.tasks->release();
    stubs.tasks.reset(); // waits
    expectOnlyTheOriginal();
}

TEST_F(DuplicateViewTest, ANameThatIsTakenOrInvalidIsAnError) {
    askWithData();
    field(u"Name"_s)->setText(u"Work"_s);
    button(u"Duplicate"_s)->click();
    expectFailure("“Work” already exists at ");
    field(u"Name"_s)->setText(u"a/b"_s);
    button(u"Duplicate"_s)->click();
    expectFailure("a/b");
    field(u"Name"_s)->setText(u" "_s);
    EXPECT_FALSE(button(u"Duplicate"_s)->isEnabled());
}

TEST_F(DuplicateViewTest, ARunningCloneIsAnError) {
    const auto lock = lockHome(original.config);
    askWithData();
    button(u"Duplicate"_s)->click();
    ASSERT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }));
    fs::remove(data("Work") / homeLockName); // made by this test
    expectFailure("“Work” is still running, or a clone that shares its data folder is");
}

TEST_F(DuplicateViewTest, DataThatIsInThePlaceAlreadyIsAnErrorAndStays) {
    askWithData();
    write(data("Second") / "mine", "1");
    field(u"Name"_s)->setText(u"Second"_s);
    button(u"Duplicate"_s)->click();
    ASSERT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }));
    EXPECT_EQ(stubs.model().lastError(), "Couldn't duplicate: There is something at " +
                                             data("Second").string() +
                                             " already, where the new clone’s data would be.");
    EXPECT_EQ(read(data("Second") / "mine"), "1");
    EXPECT_FALSE(fs::exists(folder / "Second.app"));
}

TEST_F(DuplicateViewTest, AnOriginalThatIsGoneIsAnError) {
    ask();
    fs::remove_all(original.bundleURL);
    button(u"Duplicate"_s)->click();
    ASSERT_TRUE(eventually([&] { return stubs.model().lastError().has_value(); }));
    EXPECT_EQ(stubs.model().lastError(),
              "Couldn't duplicate: The clone at " + original.id() + " is not there any more.");
    EXPECT_EQ(cloneCount(), 0U);
}

TEST_F(DuplicateViewTest, TheOriginalIsDuplicatedAsItIsNow) {
    ask();
    (void)editClone(original.bundleURL,
                    [](CloneSettings& s) { s.config.commandPath = "/bin/false"; });
    button(u"Duplicate"_s)->click();
    ASSERT_TRUE(isGone());
    EXPECT_EQ(stubs.model().registry().record(folder / "Work (2).app")->config.commandPath,
              "/bin/false");
}

TEST_F(DuplicateViewTest, AFullDiskIsAnErrorAndNothingIsLeft) {
    write(data("Work") / "large", std::string(2U << 20U, 'x'));
    askWithData();
    const FileSizeLimit limit(1U << 20U);
    button(u"Duplicate"_s)->click();
    expectFailure("large");
}

TEST_F(DuplicateViewTest, WaitsForAnotherChangeWithoutBlockingTheWindow) {
    ask();
    auto lock = lockClones(folder);
    button(u"Duplicate"_s)->click();
    EXPECT_FALSE(eventually([&] { return panel() == nullptr; }, std::chrono::milliseconds(100)));
    EXPECT_FALSE(button(u"Duplicating…"_s)->isEnabled());
    EXPECT_FALSE(button(u"Cancel"_s)->isEnabled());
    QTest::keyClick(panel(), Qt::Key_Escape);
    EXPECT_TRUE(panel()->isVisible()) << "it can't be cancelled any more";
    lock.reset();
    EXPECT_TRUE(isGone());
    EXPECT_TRUE(fs::exists(folder / "Work (2).app"));
}

} // namespace
} // namespace quorvel::testing
