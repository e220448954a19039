#include "QuorvelApp/theme/Appearance.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QApplication>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

/// Compares a window that lived through a change of appearance with one that never knew another.
class AppearanceTest : public WindowTest {
protected:
    AppearanceTest() {
        addApps();
        stubs.sandboxed = {"/Applications/Mail.app"};
        write(home / "QuorvelInstances/Work/Downloads/a", "x");
        work = &addClone("Work");
        addClone("Home");
        stubs.workspace->setRunning({WrapperFactory::defaultBundleId("Work")});
        QApplication::setCursorFlashTime(0);
    }
    ~AppearanceTest() override { Appearance::apply(ColorScheme::light); }

    QImage picture() {
        const auto* grid = window->findChild<AppGrid*>();
        EXPECT_TRUE(grid == nullptr || !grid->isVisible() || eventually([&] {
                        (void)window->grab();
                        return stubs.model().sandboxStatus().size() == 3;
                    }));
        for (int round = 0; round < 3; ++round) {
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
        }
        return window->grab().toImage();
    }

    /// The picture under `scheme`, of a window that was opened and prepared under `before`.
    QImage pictureAfter(ColorScheme before, ColorScheme scheme,
                        const std::function<void()>& prepare) {
        Appearance::apply(before);
        open();
        prepare();
        (void)picture();
        Appearance::apply(scheme);
        return picture();
    }

    void expectNothingStale(const std::function<void()>& prepare) {
        const QImage light = pictureAfter(ColorScheme::light, ColorScheme::light, prepare);
        const QImage dark = pictureAfter(ColorScheme::dark, ColorScheme::dark, prepare);
        EXPECT_NE(light, dark);
        EXPECT_EQ(light, pictureAfter(ColorScheme::dark, ColorScheme::light, prepare));
        EXPECT_EQ(dark, pictureAfter(ColorScheme::light, ColorScheme::dark, prepare));
    }

    const InstanceRecord* work = nullptr;
};

TEST_F(AppearanceTest, TheMainWindowFollowsAtOnceAndWhole) {
    expectNothingStale([this] { select(*work); });
}

TEST_F(AppearanceTest, TheEmptyWindowFollows) {
    std::filesystem::remove_all(folder);
    expectNothingStale([] {});
}

TEST_F(AppearanceTest, TheSheetFollowsWithItsGridAndItsOptions) {
    expectNothingStale([this] {
        openSheet();
        (void)window->grab();
        choose(u"Mail"_s);
        button(u"Advanced options"_s)->click();
        (void)eventually(
            [&] { return window->findChild<NewCloneView*>()->session().form().selectedSandboxed; });
    });
}

TEST_F(AppearanceTest, TheFormsFollow) {
    const auto pictures = [this](ColorScheme before) {
        std::vector<QImage> result;
        Appearance::apply(before);
        open();
        openSheet();
        Appearance::apply(ColorScheme::dark);
        for (const QString& kind : {u"Web App"_s, u"File / Folder"_s, u"Command"_s}) {
            button(kind)->click();
            result.push_back(picture());
        }
        return result;
    };
    EXPECT_EQ(pictures(ColorScheme::light), pictures(ColorScheme::dark));
}

TEST_F(AppearanceTest, AMessageFollows) {
    expectNothingStale([this] {
        select(*work);
        button(u"Delete"_s)->click();
    });
    expectNothingStale([this] { stubs.model().setLastError("It did not work."); });
}

} // namespace
} // namespace quorvel::testing
