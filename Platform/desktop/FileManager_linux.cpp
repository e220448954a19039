#include "Platform/desktop/FileManager_linux.h"

#include "Platform/files/PlatformError.h"
#include "Platform/homes/SessionBusAddress.h"

#include <QtCore/QByteArray>
#include <QtCore/QStringList>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>

namespace quorvel {

namespace {

// Encoded from the bytes: a name need not be valid text.
QString fileAddress(const std::filesystem::path& item) {
    std::error_code code;
    const std::filesystem::path whole = std::filesystem::absolute(item, code);
    const QByteArray path = QByteArray::fromStdString((code ? item : whole).native());
    return QStringLiteral("file://") + QString::fromLatin1(path.toPercentEncoding("/"));
}

// Returns whether a file manager replied.
bool isShown(const std::filesystem::path& item) {
    if (!sessionBusAddress(currentEnvironment())) {
        return false;
    }
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"),
        QStringLiteral("org.freedesktop.FileManager1"), QStringLiteral("ShowItems"));
    call << QStringList{fileAddress(item)} << QString();
    constexpr int timeoutMilliseconds = 5000;
    return QDBusConnection::sessionBus().call(call, QDBus::Block, timeoutMilliseconds).type() ==
           QDBusMessage::ReplyMessage;
}

} // namespace

void showInFileManager(const std::filesystem::path& item) {
    if (!isShown(item)) {
        throw PlatformError(std::make_error_code(std::errc::not_supported), item,
                            "shown in the file manager");
    }
}

} // namespace quorvel
