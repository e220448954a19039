#include "QuorvelApp/Components.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/model/ShownText.h"
#include "QuorvelApp/widgets/CopyableLabel.h"
#include "QuorvelApp/widgets/CrispPixmap.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QTimerEvent>
#include <QWheelEvent>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

QString inkName(Ink ink) {
    return ink == Ink::secondary  ? u"secondary"_s
           : ink == Ink::tertiary ? u"tertiary"_s
                                  : QString();
}

QString lookName(ButtonLook look) {
    switch (look) {
    case ButtonLook::small:
        return u"small"_s;
    case ButtonLook::prominent:
        return u"prominent"_s;
    case ButtonLook::destructive:
        return u"destructive"_s;
    case ButtonLook::tool:
        return u"tool"_s;
    case ButtonLook::standard:
        break;
    }
    return u"standard"_s;
}

Ink inkOn(ButtonLook look) {
    return look == ButtonLook::prominent     ? Ink::onAccent
           : look == ButtonLook::destructive ? Ink::danger
                                             : Ink::text;
}

} // namespace

void styleLabel(QLabel* label, TextStyle textStyle, Ink ink) {
    label->setTextFormat(Qt::PlainText);
    label->setFont(fontFor(textStyle));
    label->setProperty("ink", inkName(ink));
}

QLabel* makeLabel(const QString& text, TextStyle textStyle, Ink ink) {
    auto* label = new QLabel;
    styleLabel(label, textStyle, ink);
    label->setText(text);
    return label;
}

QLabel* makeWrappingLabel(const QString& text, TextStyle textStyle, Ink ink) {
    QLabel* label = makeLabel(text, textStyle, ink);
    label->setWordWrap(true);
    return label;
}

QPushButton* makeButton(const QString& text, ButtonLook look, const QString& symbol) {
    auto* button = new QPushButton(text);
    button->setProperty("look", lookName(look));
    button->setFont(
        fontFor(look == ButtonLook::small ? TextStyle::captionMedium : TextStyle::medium));
    button->setAutoDefault(true);
    if (!symbol.isEmpty()) {
        button->setIcon(symbolIcon(symbol, inkOn(look)));
        // The style puts the text too close; what is beside the symbol stays empty.
        button->setIconSize({text.isEmpty() ? 16 : 22, 16});
    }
    return button;
}

void makeDefault(QPushButton* button) {
    button->setDefault(true);
    // One that becomes the default by its focus would cease to be with it.
    button->setAutoDefault(false);
}

QString withoutMnemonics(QString text) {
    return text.replace(u'&', u"&&"_s);
}

QFrame* makeDivider(Qt::Orientation orientation) {
    auto* line = new QFrame;
    line->setObjectName(u"divider"_s);
    if (orientation == Qt::Horizontal) {
        line->setFixedHeight(1);
    } else {
        line->setFixedWidth(1);
    }
    return line;
}

WrappingCheckBox::WrappingCheckBox(const QString& label)
    : box_(new QCheckBox),
      label_(makeWrappingLabel(label, TextStyle::callout)) {
    box_->setAccessibleName(label);
    label_->installEventFilter(this);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(7);
    row->addWidget(box_, 0, Qt::AlignTop);
    row->addWidget(label_, 1);
}

bool WrappingCheckBox::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseButtonRelease) {
        box_->click();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void PaneComboBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

InfoRow::InfoRow(const DetailRow& row)
    : label_(makeLabel(qtText(row.label), TextStyle::body, Ink::secondary)),
      value_(new WrappingText(TextStyle::body)) {
    label_->setFixedWidth(labelWidth);
    label_->setBuddy(value_);
    if (row.mono) {
        value_->setFont(monospacedFont());
    }
    value_->setFullText(shownText(row.value));
    value_->setAccessibleName(qtText(row.label) + u": "_s + value_->fullText());
    value_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    value_->setFocusPolicy(Qt::StrongFocus); // so that it can be copied without a mouse
    value_->setMinimumWidth(0);
    value_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 6, 0, 6);
    layout->setSpacing(14);
    layout->addWidget(label_, 0, Qt::AlignTop);
    layout->addWidget(value_, 1, Qt::AlignTop);
}

QString InfoRow::label() const {
    return label_->text();
}

QString InfoRow::value() const {
    return value_->fullText();
}

AppIcon::AppIcon(IconLoader& loader, int size, QWidget* parent) : QWidget(parent), loader_(loader) {
    setFixedSize(size, size);
    connect(&loader_, &IconLoader::loaded, this, [this](const std::filesystem::path& path) {
        if (path == path_) {
            update();
        }
    });
}

void AppIcon::setPath(const std::filesystem::path& path) {
    path_ = path;
    update();
}

void AppIcon::paintEvent(QPaintEvent*) {
    if (path_.empty()) {
        return;
    }
    QPainter painter(this);
    drawCrisp(painter, rect(), loader_.icon(path_, width(), devicePixelRatioF()));
}

// No look at the disk: this is asked at each painting. A file that is missing shows a stand-in.
std::filesystem::path iconPathOf(const InstanceRecord& clone) {
    return clone.bundleURL / "Contents" / "Resources" / "AppIcon.icns";
}

StatusDot::StatusDot(QWidget* parent) : QWidget(parent) {
    setFixedSize(diameter, diameter);
}

void StatusDot::setRunning(bool running) {
    running_ = running;
    update();
}

void StatusDot::paintEvent(QPaintEvent*) {
    const Colors& colors = colorsFor(palette());
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(running_ ? colors.running : colors.secondary);
    painter.drawEllipse(rect());
}

Spinner::Spinner(int size, Ink ink, QWidget* parent) : QWidget(parent), ink_(ink) {
    setFixedSize(size, size);
    setAccessibleName(tr("In progress"));
}

void Spinner::showEvent(QShowEvent*) {
    timer_ = timer_ == 0 ? startTimer(80) : timer_;
}

void Spinner::hideEvent(QHideEvent*) {
    killTimer(std::exchange(timer_, 0));
}

void Spinner::timerEvent(QTimerEvent*) {
    step_ = (step_ + 1) % 12;
    update();
}

void Spinner::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(width() / 2.0, height() / 2.0);
    const double radius = width() / 2.0;
    QColor color = inkColor(ink_, colorsFor(palette()));
    for (int spoke = 0; spoke < 12; ++spoke) {
        color.setAlphaF(0.15F + 0.85F * static_cast<float>((spoke + 12 - step_) % 12) / 11.0F);
        painter.setPen(QPen(color, radius * 0.17, Qt::SolidLine, Qt::RoundCap));
        painter.save();
        painter.rotate(-30.0 * spoke);
        painter.drawLine(QPointF(0, -radius * 0.5), QPointF(0, -radius * 0.88));
        painter.restore();
    }
}

} // namespace quorvel
