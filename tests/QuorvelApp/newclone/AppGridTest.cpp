#include "QuorvelApp/Components.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QPainter>
#include <QScrollBar>
#include <QTest>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;

/// The tiles under a mouse, and their measures.
class AppGridTest : public WindowTest {
protected:
    void openGrid() {
        addApps();
        open();
        sheet = &openSheet();
        (void)window->grab();
        grid = window->findChild<AppGrid*>();
    }

    /// The focus is in the search field, the grid far down.
    void openScrolled() {
        for (int number = 100; number < 300; ++number) {
            const std::string name = "App " + std::to_string(number);
            stubs.installed.push_back({.url = "/" + name, .name = name});
        }
        open();
        sheet = &openSheet();
        (void)window->grab();
        grid = window->findChild<AppGrid*>();
        grid->verticalScrollBar()->setValue(scrolledTo);
        ASSERT_EQ(grid->verticalScrollBar()->value(), scrolledTo);
    }

    /// The first tile that is wholly in view.
    [[nodiscard]] QModelIndex firstInSight() const {
        for (int row = 0; row < grid->model()->rowCount(); ++row) {
            const QModelIndex index = grid->model()->index(row, 0);
            if (grid->viewport()->rect().contains(grid->visualRect(index))) {
                return index;
            }
        }
        return {};
    }

    [[nodiscard]] std::string chosen() const {
        const auto& selected = sheet->session().form().selected;
        return selected ? selected->name : "";
    }

    void press(QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mousePress(grid->viewport(), button, {}, at);
    }
    void release(QPoint at, Qt::MouseButton button = Qt::LeftButton) {
        QTest::mouseRelease(grid->viewport(), button, {}, at);
    }
    void drag(QPoint from, QPoint to) {
        press(from);
        for (const QPoint at : {from + (to - from) / 2, to}) {
            QMouseEvent move(QEvent::MouseMove, at, grid->viewport()->mapToGlobal(at), Qt::NoButton,
                             Qt::LeftButton, Qt::NoModifier);
            QApplication::sendEvent(grid->viewport(), &move);
        }
        release(to);
    }

    static constexpr int scrolledTo = 1000;
    NewCloneView* sheet = nullptr;
    AppGrid* grid = nullptr;
};

TEST_F(AppGridTest, ShowsTheIconThatTheScanFound) {
    write(home / "green.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 10 10">)"
                              R"(<rect width="10" height="10" fill="#00ff00"/></svg>)");
    stubs.installed.push_back({.url = "/usr/share/applications/a.desktop",
                               .name = "Ångström",
                               .bundleId = "a.desktop",
                               .themeIcon = home / "green.svg"});
    openGrid();
    const QRect tile = grid->visualRect(grid->model()->index(0, 0));
    const QPoint icon(tile.center().x(),
                      AppTile::tileRect(tile).top() + 10 + AppTile::iconSize / 2);
    EXPECT_TRUE(eventually([&] {
        return grid->viewport()->grab().toImage().pixelColor(icon * window->devicePixelRatioF()) ==
               QColor(Qt::green);
    }));
    sheet->session().edit([](NewCloneForm& form) { form.search = "ång"; });
    EXPECT_EQ(grid->model()->rowCount(), 1);
    choose(u"Ångström"_s);
    const auto* header = window->findChild<ConfigurationPane*>()->findChild<AppIcon*>();
    EXPECT_EQ(header->path(), home / "green.svg");
    EXPECT_EQ(sheet->session().form().cloneName, "Ångström (2)");
    EXPECT_EQ(sheet->session().form().makeRequest().targetApp, "/usr/share/applications/a.desktop");
}

TEST_F(AppGridTest, AClickSelectsWhenTheButtonIsReleased) {
    openGrid();
    press(middleOfTile(u"Notes"_s));
    EXPECT_EQ(chosen(), "");
    release(middleOfTile(u"Notes"_s));
    EXPECT_EQ(chosen(), "Notes");
    EXPECT_EQ(sheet->session().form().cloneName, "Notes (2)");
}

TEST_F(AppGridTest, NeitherADragNorAnotherButtonSelects) {
    openGrid();
    drag(middleOfTile(u"Mail"_s), middleOfTile(u"Zoom"_s));
    EXPECT_EQ(chosen(), "");
    drag(middleOfTile(u"Mail"_s), QPoint(grid->viewport()->width() - 1, 400));
    EXPECT_EQ(chosen(), "");
    for (const auto button : {Qt::RightButton, Qt::MiddleButton}) {
        press(middleOfTile(u"Mail"_s), button);
        release(middleOfTile(u"Mail"_s), button);
        EXPECT_EQ(chosen(), "");
    }
}

TEST_F(AppGridTest, AClickBetweenTheTilesSelectsNothing) {
    openGrid();
    const QRect first = grid->visualRect(grid->model()->index(0, 0));
    for (const QPoint gap : {first.topRight(), first.bottomLeft(), QPoint(first.right() + 8, 30),
                             QPoint(first.center().x(), first.bottom() - 7)}) {
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, gap);
        EXPECT_EQ(chosen(), "") << gap.x() << ' ' << gap.y();
    }
    for (const QPoint corner : {QPoint(8, 8), QPoint(first.width() - 9, first.height() - 9)}) {
        choose(u"Zoom"_s);
        QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, first.topLeft() + corner);
        EXPECT_EQ(chosen(), "Mail") << "the whole tile";
    }
}

TEST_F(AppGridTest, TheRingDoesNotFollowAnAnswerThatComesLater) {
    openGrid();
    choose(u"Zoom"_s);
    grid->setFocus();
    QTest::keyClick(grid, Qt::Key_Home);
    sheet->session().edit([](NewCloneForm& form) { form.strategyReason = "new"; });
    EXPECT_EQ(grid->currentIndex().row(), 0);
    EXPECT_EQ(chosen(), "Zoom");
}

TEST_F(AppGridTest, TheFirstClickInAScrolledGridTakesTheTileUnderIt) {
    openScrolled();
    ASSERT_FALSE(grid->hasFocus());
    const QModelIndex under = grid->indexAt(grid->visualRect(firstInSight()).center());
    ASSERT_GT(under.row(), 0);
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, grid->visualRect(under).center());
    EXPECT_EQ(chosen(), under.data().toString().toStdString());
    EXPECT_EQ(grid->currentIndex(), under);
    EXPECT_EQ(grid->verticalScrollBar()->value(), scrolledTo);
}

TEST_F(AppGridTest, TheFirstClickInAGapOfAScrolledGridSelectsNothing) {
    openScrolled();
    const QPoint gap = grid->visualRect(firstInSight()).bottomLeft();
    QTest::mouseClick(grid->viewport(), Qt::LeftButton, {}, gap);
    EXPECT_TRUE(grid->hasFocus());
    EXPECT_EQ(chosen(), "");
    EXPECT_EQ(grid->verticalScrollBar()->value(), scrolledTo);
    QFocusEvent activated(QEvent::FocusIn, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(grid, &activated);
    EXPECT_EQ(grid->verticalScrollBar()->value(), scrolledTo) << "the window was clicked to front";
}

TEST_F(AppGridTest, TheRingStaysOnItsAppWhenTheCatalogChanges) {
    openScrolled();
    grid->setFocus();
    const QModelIndex ring = firstInSight();
    grid->selectionModel()->setCurrentIndex(ring, QItemSelectionModel::NoUpdate);
    grid->verticalScrollBar()->setValue(scrolledTo - 20);
    const QString name = ring.data().toString();
    const int row = ring.row();
    stubs.installed.insert(stubs.installed.begin(), {.url = "/new", .name = "A new one"});
    stubs.model().loadCatalog();
    ASSERT_TRUE(eventually([&] { return grid->model()->rowCount() == 201; }));
    EXPECT_EQ(grid->currentIndex().data().toString(), name);
    EXPECT_EQ(grid->currentIndex().row(), row + 1);
    (void)window->grab();
    EXPECT_EQ(grid->verticalScrollBar()->value(), scrolledTo - 20);
    EXPECT_EQ(chosen(), "");
    QTest::keyClick(grid, Qt::Key_Space);
    EXPECT_EQ(chosen(), name.toStdString());
}

TEST_F(AppGridTest, TheSpaceBelowTheLastRowEqualsThatAboveTheFirst) {
    for (int number = 10; number < 60; ++number) {
        stubs.installed.push_back({.url = "/" + std::to_string(number), .name = "App"});
    }
    open();
    openSheet();
    (void)window->grab();
    grid = window->findChild<AppGrid*>();
    const auto tile = [&](int row) {
        const QRect rect = AppTile::tileRect(grid->visualRect(grid->model()->index(row, 0)));
        return QRect(grid->viewport()->mapTo(grid, rect.topLeft()), rect.size());
    };
    EXPECT_EQ(tile(0).top(), 16);
    EXPECT_EQ(tile(0).left(), 16);
    grid->verticalScrollBar()->setValue(grid->verticalScrollBar()->maximum());
    EXPECT_EQ(grid->height() - 1 - tile(grid->model()->rowCount() - 1).bottom(), 16);
}

/// One tile, painted on its own at twice its size so that half points show.
class AppGridTestTile : public ::testing::Test {
protected:
    static constexpr int ratio = 2;
    static constexpr int cellWidth = 108;
    static constexpr int cellHeight = AppTile::height + AppTile::spacing;

    QImage painted(bool selected, std::optional<bool> sandboxed, const std::string& name = "Mail") {
        const InstalledApp app{.url = "/Applications/Mail.app", .name = name};
        std::map<std::string, bool> status;
        if (sandboxed) {
            status[app.id()] = *sandboxed;
        }
        AppGridModel apps(status);
        apps.setApps({app});
        IconLoader icons(std::make_shared<ThreadPoolTasks>());
        const AppTile tile(icons);
        QImage image(QSize(cellWidth, cellHeight) * ratio, QImage::Format_RGB32);
        image.setDevicePixelRatio(ratio);
        image.fill(ground);
        QStyleOptionViewItem option;
        option.rect = QRect(0, 0, cellWidth, cellHeight);
        option.palette = QApplication::palette();
        option.state.setFlag(QStyle::State_Selected, selected);
        QPainter painter(&image);
        tile.paint(&painter, option, apps.index(0, 0));
        return image;
    }

    // The rectangle, in half points, of all pixels that differ.
    static QRect difference(const QImage& one, const QImage& other) {
        QRect all;
        for (int y = 0; y < one.height(); ++y) {
            for (int x = 0; x < one.width(); ++x) {
                if (one.pixel(x, y) != other.pixel(x, y)) {
                    all |= QRect(x, y, 1, 1);
                }
            }
        }
        return all;
    }

    QColor ground = lightColors().content;
};

constexpr int iconTop = 8 + 10;
constexpr int iconLeft = (108 - 48) / 2;

TEST_F(AppGridTestTile, FillsItsCellButForTheSpacing) {
    const QImage plain = painted(false, false);
    const QImage selected = painted(true, false);
    EXPECT_EQ(difference(plain, selected), QRect(16, 16, 2 * 92, 2 * 102));
    EXPECT_EQ(selected.pixelColor(16 + 60, 16 + 1), lightColors().accent) << "an outline";
    const QColor fill = selected.pixelColor(16 + 60, 16 + 6);
    const auto mixed = [&](int over, int under) { return qRound(over * 0.18 + under * 0.82); };
    EXPECT_NEAR(fill.red(), mixed(lightColors().accent.red(), ground.red()), 1);
    EXPECT_NEAR(fill.blue(), mixed(lightColors().accent.blue(), ground.blue()), 1);
    EXPECT_EQ(selected.pixelColor(17, 17), plain.pixelColor(17, 17)) << "round corners";
}

TEST_F(AppGridTestTile, HasItsNameInAFrameOf28PointsBelowTheIcon) {
    const QRect name = difference(painted(false, false, " "),
                                  painted(false, false, "Wwwwg Mmmmg Wwwwg Mmmmg Wwwwwg"));
    const int top = iconTop + 48 + 6;
    EXPECT_GE(name.top(), 2 * top);
    EXPECT_LT(name.top(), 2 * (top + 8)) << "at the top of its frame";
    EXPECT_GT(name.bottom(), 2 * (top + 14)) << "two lines";
    EXPECT_GE(name.left(), 2 * (8 + 10));
    EXPECT_LE(name.right(), 2 * (8 + 92 - 10));
}

TEST_F(AppGridTestTile, HasALockOf15PointsAndARingThreePointsOutwardOfItsIcon) {
    const QImage plain = painted(false, false);
    const QImage locked = painted(false, true);
    const int right = iconLeft + 48 + 3;
    const int bottom = iconTop + 48 + 3;
    const QRect circle(2 * (right - 15), 2 * (bottom - 15), 2 * 15, 2 * 15);
    // The ring is of the ground's color, so that it shows over the icon alone.
    EXPECT_EQ(difference(plain, locked), circle.adjusted(-3, -3, 0, 0));
    QRect orange;
    QRect white;
    for (int y = circle.top(); y <= circle.bottom(); ++y) {
        for (int x = circle.left(); x <= circle.right(); ++x) {
            const QColor color = locked.pixelColor(x, y);
            if (color == lightColors().orange) {
                orange |= QRect(x, y, 1, 1);
            } else if (circle.adjusted(6, 6, -6, -6).contains(x, y) && color.blue() > 128) {
                white |= QRect(x, y, 1, 1);
            }
        }
    }
    EXPECT_TRUE(circle.contains(orange));
    EXPECT_GE(orange.width(), 2 * 14) << "but for the softened edge";
    EXPECT_GE(orange.height(), 2 * 14);
    EXPECT_GE(white.height(), 14) << "the lock, 9 points";
    EXPECT_LE(white.height(), 18);
    const QRect icon(2 * iconLeft, 2 * iconTop, 2 * 48, 2 * 48);
    EXPECT_EQ(icon.right() + 6, circle.right());
}

TEST_F(AppGridTestTile, HasNoLockUnlessItsAppIsKnownToBeSandboxed) {
    EXPECT_EQ(difference(painted(false, std::nullopt), painted(false, false)), QRect());
    const InstalledApp app{.url = "/Applications/Mail.app", .name = "Mail"};
    const std::map<std::string, bool> nothing;
    AppGridModel apps(nothing);
    apps.setApps({app});
    EXPECT_FALSE(apps.index(0, 0).data(AppGridModel::SandboxedRole).toBool());
}

} // namespace
} // namespace quorvel::testing
