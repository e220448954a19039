#include "LaunchKit/Icons/IcnsWriter.h"
#include "QuorvelApp/Components.h"
#include "QuorvelApp/library/CloneRow.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QApplication>
#include <QListView>
#include <QPainter>

#include <array>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

/// The window as readers from right to left see it.
class RightToLeftTest : public WindowTest {
protected:
    RightToLeftTest() { QApplication::setLayoutDirection(Qt::RightToLeft); }
    ~RightToLeftTest() override { QApplication::setLayoutDirection(Qt::LeftToRight); }

    int leftOf(const QWidget* widget) { return widget->mapTo(window.get(), QPoint()).x(); }

    // The middle of all pixels of that color; -1 if there are none.
    static int middleOf(const QImage& image, const QColor& color) {
        qint64 sum = 0;
        qint64 count = 0;
        for (int y = 0; y < image.height(); ++y) {
            for (int x = 0; x < image.width(); ++x) {
                if (image.pixelColor(x, y) == color) {
                    sum += x;
                    ++count;
                }
            }
        }
        return count == 0 ? -1 : static_cast<int>(sum / count);
    }
};

TEST_F(RightToLeftTest, TheColumnsAreMirrored) {
    addClone("Work");
    open();
    EXPECT_GT(leftOf(&window->content().sidebar()), window->width() / 2);
}

TEST_F(RightToLeftTest, ARowBeginsWithItsIconAtTheRightAndEndsWithItsDotAtTheLeft) {
    const InstanceRecord& work = addClone("Work");
    QImage magenta(64, 64, QImage::Format_ARGB32);
    magenta.fill(Qt::magenta);
    write(iconPathOf(work), icnsFile(std::array{icnsChunk(magenta)}));
    stubs.workspace->setRunning({WrapperFactory::defaultBundleId("Work")});
    open();
    const auto* list = window->content().sidebar().findChild<QListView*>();
    QImage row;
    ASSERT_TRUE(eventually([&] {
        row = list->viewport()->grab(list->visualRect(list->model()->index(0, 0))).toImage();
        return middleOf(row, Qt::magenta) >= 0;
    }));
    EXPECT_GT(middleOf(row, Qt::magenta), row.width() * 3 / 4);
    const int dot = middleOf(row, lightColors().running);
    EXPECT_GE(dot, 0);
    EXPECT_LT(dot, row.width() / 4);
}

TEST_F(RightToLeftTest, TheDetailBeginsAtTheRight) {
    const InstanceRecord& work = addClone("Work");
    open();
    select(work);
    EXPECT_GT(leftOf(button(u"Launch"_s)), leftOf(button(u"Reveal in Finder"_s)));
    EXPECT_GT(leftOf(button(u"Reveal in Finder"_s)), leftOf(button(u"Delete"_s)));
    for (const auto* row : window->findChildren<InfoRow*>()) {
        const auto labels = row->findChildren<QLabel*>();
        ASSERT_EQ(labels.size(), 2);
        EXPECT_GT(leftOf(labels[0]), leftOf(labels[1]));
    }
}

TEST_F(RightToLeftTest, TheGridBeginsAtTheRightAndItsLocksAreAtTheLeft) {
    stubs.sandboxed = {"/Applications/Mail.app"};
    openSheetWith(u"Notes"_s);
    const auto* grid = window->findChild<AppGrid*>();
    const QRect first = grid->visualRect(grid->model()->index(0, 0));
    const QRect second = grid->visualRect(grid->model()->index(1, 0));
    EXPECT_GT(first.left(), second.left());
    EXPECT_GT(first.center().x(), grid->viewport()->width() / 2);
    QImage tile;
    ASSERT_TRUE(eventually([&] {
        tile = grid->viewport()->grab(first).toImage();
        return middleOf(tile, lightColors().orange) >= 0;
    }));
    EXPECT_LT(middleOf(tile, lightColors().orange), tile.width() / 2);
}

TEST_F(RightToLeftTest, TheSheetsPanesAndButtonsAreMirrored) {
    openSheetWith(u"Notes"_s);
    EXPECT_LT(leftOf(window->findChild<ConfigurationPane*>()),
              leftOf(window->findChild<AppGrid*>()));
    EXPECT_LT(leftOf(button(u"Create Shortcut"_s)), leftOf(button(u"Cancel"_s)));
    EXPECT_GT(leftOf(button(u"App"_s)), leftOf(button(u"Command"_s)));
}

} // namespace
} // namespace quorvel::testing
