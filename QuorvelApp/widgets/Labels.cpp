#include "QuorvelApp/widgets/Labels.h"

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

QString inkName(Ink ink) {
    return ink == Ink::secondary  ? u"secondary"_s
           : ink == Ink::tertiary ? u"tertiary"_s
                                  : QString();
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

} // namespace quorvel
