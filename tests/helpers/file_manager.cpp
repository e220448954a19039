// Replaces the desktop's file manager on the session bus: writes the URLs that it is asked to show
// into the file given as its argument.
#include "tests/helpers/BusRecorder.h"

namespace {

class FileManager final : public BusRecorder {
public:
    using BusRecorder::BusRecorder;

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        if (message.interface() != QStringLiteral("org.freedesktop.FileManager1") ||
            message.member() != QStringLiteral("ShowItems")) {
            return false;
        }
        for (const QString& address : message.arguments().constFirst().toStringList()) {
            say(address.toStdString());
        }
        return connection.send(message.createReply());
    }
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc < 2) {
        return 2;
    }
    return FileManager(argv[1]).serve(QStringLiteral("org.freedesktop.FileManager1"),
                                      {QStringLiteral("/org/freedesktop/FileManager1")});
}
