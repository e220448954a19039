#include "QuorvelApp/theme/Appearance.h"

#include "QuorvelApp/theme/Symbols.h"
#include "QuorvelApp/theme/Theme.h"

#include <QApplication>
#include <QEvent>
#include <QKeyEvent>
#include <QOperatingSystemVersion>
#include <QProxyStyle>
#include <QStyleFactory>
#include <QStyleOption>
#include <QWidget>

// A static library's resources must be initialised by name, outside any namespace.
static void loadResources() {
    Q_INIT_RESOURCE(Theme);
}

namespace quorvel {
namespace {

ColorScheme schemeOf(const QPalette& palette) {
    return isDark(palette) ? ColorScheme::dark : ColorScheme::light;
}

// Fusion, with mnemonics underlined only while they can be used.
class Style final : public QProxyStyle {
public:
    Style() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}

    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_UnderlineShortcut
                   ? int(QApplication::queryKeyboardModifiers().testFlag(Qt::AltModifier))
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }

    QIcon standardIcon(StandardPixmap icon, const QStyleOption* option,
                       const QWidget* widget) const override {
        // Every menu bar has it, for when it is too narrow. Fusion's is a picture, for which all
        // plugins for images would be loaded before the window opens.
        return icon == SP_ToolBarHorizontalExtensionButton
                   ? symbolIcon(QStringLiteral("chevron.right"), Ink::text,
                                option != nullptr && option->direction == Qt::RightToLeft)
                   : QProxyStyle::standardIcon(icon, option, widget);
    }
};

void repaintMnemonics() {
    if (const QWidget* window = QApplication::activeWindow()) {
        for (QWidget* widget : window->findChildren<QWidget*>()) {
            widget->update();
        }
    }
}

bool isAltKey(const QEvent* event) {
    const bool key = event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease;
    return key && static_cast<const QKeyEvent*>(event)->key() == Qt::Key_Alt;
}

// On macOS, the system's own style is used.
bool hasNativeStyle() {
    return QOperatingSystemVersion::currentType() == QOperatingSystemVersion::MacOS;
}

} // namespace

Appearance::Appearance(QObject* parent)
    : QObject(parent),
      desktopPalette_(schemeOf(QApplication::palette())),
      desktop_(makeColorSchemeSource([this] { follow(); })) {
    if (!hasNativeStyle()) {
        QApplication::setStyle(new Style); // the application owns it
    }
    qApp->installEventFilter(this);
    follow();
}

void Appearance::apply(ColorScheme scheme) {
    loadResources();
    const Colors& colors = scheme == ColorScheme::dark ? darkColors() : lightColors();
    if (!hasNativeStyle()) {
        QApplication::setPalette(paletteFor(colors));
    }
    qApp->setStyleSheet(
        styleSheetFor(colors, hasNativeStyle() ? ControlLook::native : ControlLook::styled));
}

bool Appearance::eventFilter(QObject* watched, QEvent* event) {
    if (isAltKey(event)) {
        QMetaObject::invokeMethod(this, repaintMnemonics, Qt::QueuedConnection);
    } else if (watched == qApp && event->type() == QEvent::ThemeChange) {
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
