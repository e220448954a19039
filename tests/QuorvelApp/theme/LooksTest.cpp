#include "LaunchKit/InstanceConfig.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/Components.h"
#include "QuorvelApp/library/CloneRow.h"
#include "QuorvelApp/theme/Appearance.h"
#include "QuorvelApp/widgets/ColorWell.h"
#include "QuorvelApp/widgets/CopyableLabel.h"
#include "tests/QuorvelApp/WindowFixture.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QListView>
#include <QMenu>
#include <QPlainTextEdit>
#include <QScrollBar>

#include <gmock/gmock.h>

namespace quorvel::testing {
namespace {

using namespace Qt::StringLiterals;
using ::testing::ElementsAre;

class LooksTest : public WindowTest {
protected:
    ~LooksTest() override { Appearance::apply(ColorScheme::light); }
};

QImage pictureOf(QWidget& widget, bool enabled) {
    widget.setEnabled(enabled);
    return widget.grab().toImage();
}

TEST_F(LooksTest, WhatIsDisabledLooksSo) {
    for (const ColorScheme scheme : {ColorScheme::light, ColorScheme::dark}) {
        Appearance::apply(scheme);
        for (const ButtonLook look : {ButtonLook::standard, ButtonLook::small,
                                      ButtonLook::prominent, ButtonLook::destructive}) {
            const std::unique_ptr<QPushButton> button(makeButton(u"Create"_s, look));
            EXPECT_NE(pictureOf(*button, true), pictureOf(*button, false)) << int(look);
        }
        WrappingCheckBox box(u"Menu-bar icon"_s);
        for (const bool checked : {false, true}) {
            box.box()->setChecked(checked);
            EXPECT_NE(pictureOf(*box.box(), true), pictureOf(*box.box(), false)) << checked;
            EXPECT_NE(pictureOf(*box.findChild<QLabel*>(), true),
                      pictureOf(*box.findChild<QLabel*>(), false));
        }
    }
}

TEST_F(LooksTest, TheDisabledControlsOfTheSheetAreShownSo) {
    addApps();
    open();
    openSheet();
    const QImage disabled = button(u"Create Shortcut"_s)->grab().toImage();
    choose(u"Notes"_s);
    EXPECT_NE(button(u"Create Shortcut"_s)->grab().toImage(), disabled);
    button(u"Advanced options"_s)->click();
    QCoreApplication::processEvents();
    QWidget* monochrome =
        checkBox(window.get(), u"Menu-bar icon as monochrome (template)"_s)->parentWidget();
    const QImage grey = monochrome->grab().toImage();
    checkBox(window.get(), u"Show a menu-bar icon while running"_s)->click();
    EXPECT_NE(monochrome->grab().toImage(), grey);
}

TEST_F(LooksTest, TheColorWellShowsItsWholeFrame) {
    openSheetWith(u"Notes"_s);
    button(u"Advanced options"_s)->click();
    QCoreApplication::processEvents();
    auto* well = window->findChild<ColorWell*>();
    EXPECT_EQ(well->size(), QSize(44, 24));
    EXPECT_TRUE(well->parentWidget()->rect().contains(well->geometry()));
    const QImage picture = well->grab().toImage();
    const int middle = picture.width() / 2;
    EXPECT_EQ(picture.pixelColor(middle, picture.height() - 1), lightColors().controlBorder);
    EXPECT_EQ(picture.pixelColor(middle, 0), lightColors().controlBorder);
}

TEST_F(LooksTest, ARowIsFourPointsHigherThanItsContentAtEachEnd) {
    const int texts = QFontMetrics(fontFor(TextStyle::body)).height() +
                      QFontMetrics(fontFor(TextStyle::caption)).height();
    addClone("Work");
    open();
    const auto* list = window->content().sidebar().findChild<QListView*>();
    EXPECT_EQ(list->visualRect(list->model()->index(0, 0)).height(),
              std::max(CloneRow::iconSize, texts) + 2 * 4);
}

// Measured, since some monospaced fonts don't say that they are.
bool isMonospaced(const QFont& font) {
    const QFontMetricsF metrics(font);
    return metrics.horizontalAdvance(u"iiii"_s) == metrics.horizontalAdvance(u"WWWW"_s);
}

TEST_F(LooksTest, OnlyWhatIsMeantToBeIsMonospaced) {
    InstanceConfig config = minimalConfig("Work");
    config.targetAppPath = "/Applications/Notes.app";
    config.extraArgs = {"--a"};
    config.environment = {{"A", "1"}};
    const InstanceRecord work = addClone("Work", config);
    open();
    select(work);
    std::vector<QString> monospaced;
    for (const auto* row : window->findChildren<InfoRow*>()) {
        const QFont font = row->findChild<WrappingText*>()->font();
        if (isMonospaced(font)) {
            EXPECT_EQ(font.family(), monospacedFont().family());
            EXPECT_EQ(font.pointSizeF(), monospacedFont().pointSizeF());
            monospaced.push_back(row->label());
        }
        EXPECT_FALSE(isMonospaced(row->findChild<QLabel*>()->font())) << "the label";
    }
    EXPECT_THAT(monospaced, ElementsAre(u"Arguments"_s, u"Environment"_s, u"Data home"_s,
                                        u"Bundle id"_s, u"Location"_s));
}

// The controls that a native style draws, each as `sheet` leaves it.
std::vector<QImage> controlsUnder(const QString& sheet) {
    qApp->setStyleSheet(sheet);
    QPushButton plain(u"Browse…"_s);
    QPushButton disabled(u"Browse…"_s);
    disabled.setEnabled(false);
    const std::unique_ptr<QPushButton> small(makeButton(u"Clear"_s, ButtonLook::small));
    const std::unique_ptr<QPushButton> standard(makeButton(u"Cancel"_s, ButtonLook::standard));
    QCheckBox box(u"Launch"_s);
    QLineEdit field(u"Name"_s);
    QPlainTextEdit editor(u"A=1"_s);
    QComboBox choices;
    choices.addItem(u"Home override (A)"_s);
    QScrollBar bar(Qt::Vertical);
    bar.resize(16, 200);
    QMenu menu;
    menu.addAction(u"Refresh"_s);
    std::vector<QImage> pictures;
    for (QWidget* widget :
         std::initializer_list<QWidget*>{&plain, &disabled, small.get(), standard.get(), &box,
                                         &field, &editor, &choices, &bar, &menu}) {
        pictures.push_back(widget->grab().toImage());
    }
    return pictures;
}

TEST_F(LooksTest, ANativeStyleDrawsItsControlsItself) {
    const auto bare = controlsUnder({});
    EXPECT_EQ(controlsUnder(styleSheetFor(lightColors(), ControlLook::native)), bare);
    const auto ours = controlsUnder(styleSheetFor(lightColors(), ControlLook::styled));
    for (std::size_t index = 0; index < bare.size(); ++index) {
        EXPECT_NE(ours[index], bare[index]) << index;
    }
}

TEST_F(LooksTest, UnderANativeStyleTheWindowsOwnPiecesAreStillDrawn) {
    qApp->setStyleSheet(styleSheetFor(lightColors(), ControlLook::native));
    const std::unique_ptr<QPushButton> launch(makeButton(u"Launch"_s, ButtonLook::prominent));
    const QImage picture = launch->grab().toImage();
    EXPECT_EQ(picture.pixelColor(picture.width() / 2, 3), lightColors().accent);
    open();
    auto* bar = window->findChild<QWidget*>(u"toolbar"_s);
    EXPECT_EQ(bar->grab().toImage().pixelColor(200, 5), lightColors().sidebar);
}

} // namespace
} // namespace quorvel::testing
