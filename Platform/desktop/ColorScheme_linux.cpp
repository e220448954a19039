#include "Platform/desktop/ColorScheme.h"

#include "Platform/desktop/ColorScheme_linux.h"
#include "Platform/homes/SessionBusAddress.h"

#include <QDBusConnection>
#include <QDBusMessage>

namespace quorvel {
namespace {

const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto settings = QStringLiteral("org.freedesktop.portal.Settings");
const auto group = QStringLiteral("org.freedesktop.appearance");
const auto key = QStringLiteral("color-scheme");
constexpr int longestWait = 100; // milliseconds, during which no window appears

QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>()) {
        value = value.value<QDBusVariant>().variant();
    }
    return value;
}

// The portal's numbers: 1 prefers dark, 2 light, 0 neither.
std::optional<ColorScheme> schemeFrom(const QVariant& value) {
    bool isNumber = false;
    const uint number = unwrapped(value).toUInt(&isNumber);
    if (!isNumber || number == 0 || number > 2) {
        return std::nullopt;
    }
    return number == 1 ? ColorScheme::dark : ColorScheme::light;
}

} // namespace

PortalColorScheme::PortalColorScheme(std::function<void()> changed) : changed_(std::move(changed)) {
    if (!sessionBusAddress(currentEnvironment())) {
        return;
    }
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        return;
    }
    bus.connect(service, path, settings, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage question =
        QDBusMessage::createMethodCall(service, path, settings, QStringLiteral("Read"));
    question.setArguments({group, key});
    const QDBusMessage answer = bus.call(question, QDBus::Block, longestWait);
    if (answer.type() == QDBusMessage::ReplyMessage && !answer.arguments().isEmpty()) {
        scheme_ = schemeFrom(answer.arguments().constFirst());
    }
}

void PortalColorScheme::settingChanged(const QString& changedGroup, const QString& changedKey,
                                       const QDBusVariant& value) {
    if (changedGroup == group && changedKey == key) {
        scheme_ = schemeFrom(value.variant());
        changed_();
    }
}

std::unique_ptr<ColorSchemeSource> makeColorSchemeSource(std::function<void()> changed) {
    return std::make_unique<PortalColorScheme>(std::move(changed));
}

} // namespace quorvel
