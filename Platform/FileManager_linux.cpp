#include "Platform/FileManager_linux.h"

#include "Platform/PlatformError.h"

#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

namespace quorvel {

void showInFileManager(const std::filesystem::path& item) {
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(item.string()));
    call << QStringList{url.toString(QUrl::FullyEncoded)} << QString();
    constexpr int timeoutMilliseconds = 5000;
    const QDBusMessage reply =
        QDBusConnection::sessionBus().call(call, QDBus::Block, timeoutMilliseconds);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        throw PlatformError(std::make_error_code(std::errc::not_supported), item,
                            "shown in the file manager");
    }
}

} // namespace quorvel
