// Replaces the desktop's file manager on the session bus: writes the URLs that it is asked to show
// into the file given as its argument, one per line, after "ready" as the first.
#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

#include <fstream>

namespace {

class FileManager final : public QDBusVirtualObject {
public:
    explicit FileManager(const char* file) : file_(file, std::ios::app) {}

    void say(const std::string& line) { file_ << line << std::endl; }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

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

private:
    std::ofstream file_;
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc < 2) {
        return 2;
    }
    FileManager manager(argv[1]);
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerVirtualObject(QStringLiteral("/org/freedesktop/FileManager1"), &manager) ||
        !bus.registerService(QStringLiteral("org.freedesktop.FileManager1"))) {
        return 1;
    }
    manager.say("ready");
    return QCoreApplication::exec();
}
