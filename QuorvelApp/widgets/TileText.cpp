#include "QuorvelApp/widgets/TileText.h"

#include "QuorvelApp/theme/Theme.h"

#include <QFontMetrics>
#include <QPainter>
#include <QTextLayout>

namespace quorvel::TileText {
namespace {

// Absurdly long names are truncated before layout.
constexpr int longestName = 300;

} // namespace

QStringList lines(const QString& name, int width) {
    const QFont font = fontFor(TextStyle::caption);
    const QString text = name.left(longestName);
    QTextOption option(Qt::AlignHCenter);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    QTextLayout layout(text, font);
    layout.setTextOption(option);
    layout.beginLayout();
    QStringList result;
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        const bool last = result.size() + 1 == maximumLines;
        const QString part = text.mid(line.textStart(), last ? -1 : line.textLength()).trimmed();
        result += last ? QFontMetrics(font).elidedText(part, Qt::ElideRight, width) : part;
        if (last) {
            break;
        }
    }
    layout.endLayout();
    return result;
}

bool isElided(const QString& name, int width) {
    return lines(name, width).join(QString()).remove(u' ') != QString(name).remove(u' ');
}

void paint(QPainter* painter, const QRect& rect, const QString& name) {
    const QFont font = fontFor(TextStyle::caption);
    const int lineHeight = QFontMetrics(font).height();
    painter->setFont(font);
    QRect line(rect.left(), rect.top(), rect.width(), lineHeight);
    for (const QString& text : lines(name, rect.width())) {
        painter->drawText(line, Qt::AlignHCenter | Qt::AlignVCenter | Qt::TextSingleLine, text);
        line.translate(0, lineHeight);
    }
}

} // namespace quorvel::TileText
