#include "QuorvelApp/Appearance.h"

#include "QuorvelApp/Theme.h"

#include <QApplication>
#include <QEvent>
#include <QOperatingSystemVersion>
#include <QStyle>
#include <QStyleFactory>

namespace quorvel {
namespace {

ColorScheme schemeOf(const QPalette& palette) {
    return isDark(palette) ? ColorScheme::dark : ColorScheme::light;
}

// There the system's own style shows.
bool hasNativeStyle() {
    return QOperatingSystemVersion::currentType() == QOperatingSystemVersion::MacOS;
}

} // namespace

Appearance::Appearance(QObject* parent)
    : QObject(parent),
      desktopPalette_(schemeOf(QApplication::palette())),
      desktop_(makeColorSchemeSource([this] { follow(); })) {
    if (!hasNativeStyle()) {
        QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    }
    qApp->installEventFilter(this);
    follow();
}

void Appearance::apply(ColorScheme scheme) {
    const Colors& colors = scheme == ColorScheme::dark ? darkColors() : lightColors();
    if (!hasNativeStyle()) {
        QApplication::setPalette(paletteFor(colors));
    }
    qApp->setStyleSheet(styleSheetFor(colors));
}

bool Appearance::eventFilter(QObject* watched, QEvent* event) {
    if (watched == qApp && event->type() == QEvent::ThemeChange) {
        desktopPalette_ = schemeOf(QApplication::style()->standardPalette());
        follow();
    } else if (watched == qApp && event->type() == QEvent::ApplicationPaletteChange &&
               hasNativeStyle()) {
        desktopPalette_ = schemeOf(QApplication::palette());
        follow();
    }
    return QObject::eventFilter(watched, event);
}

ColorScheme Appearance::preferred() const {
    return desktop_->current().value_or(desktopPalette_);
}

void Appearance::follow() {
    apply(preferred());
}

} // namespace quorvel
