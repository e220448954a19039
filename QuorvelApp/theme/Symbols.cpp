#include "QuorvelApp/theme/Symbols.h"

#include "QuorvelApp/widgets/CrispPixmap.h"

#include <QApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

namespace quorvel {
namespace {

// Draws a symbol in the palette's current colors.
class SymbolEngine final : public QIconEngine {
public:
    SymbolEngine(QString name, Ink ink, bool mirrored)
        : name_(std::move(name)),
          ink_(ink),
          mirrored_(mirrored) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        const double ratio = painter->device()->devicePixelRatioF();
        drawCrisp(*painter, rect, rendered(rect.size(), ratio, mode));
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State) override {
        return rendered(size, 1.0, mode);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State, qreal scale) override {
        return rendered(size / scale, scale, mode);
    }
    QIconEngine* clone() const override { return new SymbolEngine(*this); }

private:
    QPixmap rendered(const QSize& size, double ratio, QIcon::Mode mode) const {
        const Colors& colors = colorsFor(QApplication::palette());
        const QColor color = mode == QIcon::Disabled ? colors.tertiary : inkColor(ink_, colors);
        const QString key = QStringLiteral("symbol %1 %2 %3x%4 @%5 %6")
                                .arg(name_, color.name(QColor::HexArgb))
                                .arg(size.width())
                                .arg(size.height())
                                .arg(ratio)
                                .arg(mirrored_);
        QPixmap pixmap;
        if (!QPixmapCache::find(key, &pixmap)) {
            pixmap = drawn(size, ratio, color);
            QPixmapCache::insert(key, pixmap);
        }
        return pixmap;
    }

    QPixmap drawn(const QSize& size, double ratio, const QColor& color) const {
        QImage image(size * ratio, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QSvgRenderer renderer(QStringLiteral(":/symbols/%1.svg").arg(name_));
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        QPainter painter(&image);
        renderer.render(&painter);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), color);
        painter.end();
        QPixmap pixmap = QPixmap::fromImage(mirrored_ ? image.mirrored(true, false) : image);
        pixmap.setDevicePixelRatio(ratio);
        return pixmap;
    }

    QString name_;
    Ink ink_;
    bool mirrored_;
};

} // namespace

QColor inkColor(Ink ink, const Colors& colors) {
    switch (ink) {
    case Ink::secondary:
        return colors.secondary;
    case Ink::tertiary:
        return colors.tertiary;
    case Ink::accent:
        return colors.accent;
    case Ink::onAccent:
        return colors.onAccent;
    case Ink::orange:
        return colors.orange;
    case Ink::danger:
        return colors.danger;
    case Ink::text:
        break;
    }
    return colors.text;
}

QIcon symbolIcon(const QString& name, Ink ink, bool mirrored) {
    return QIcon(new SymbolEngine(name, ink, mirrored)); // the icon owns its engine
}

SymbolView::SymbolView(const QString& name, Ink ink, int size, QWidget* parent)
    : QWidget(parent),
      name_(name),
      ink_(ink),
      icon_(symbolIcon(name, ink)) {
    setFixedSize(size, size);
}

void SymbolView::setSymbol(const QString& name) {
    name_ = name;
    icon_ = symbolIcon(name, ink_);
    update();
}

void SymbolView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    icon_.paint(&painter, rect());
}

} // namespace quorvel
