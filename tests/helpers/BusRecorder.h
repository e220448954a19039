#pragma once

#include <QtCore/QCoreApplication>
#include <QtCore/QStringList>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>

#include <fstream>
#include <string>

/// Replaces one of the desktop's services on the session bus, and writes what it is asked for
/// into a file, one request per line, after "ready" as the first.
class BusRecorder : public QDBusVirtualObject {
public:
    explicit BusRecorder(const char* file) : file_(file, std::ios::app) {}

    void say(const std::string& line) { file_ << line << std::endl; }

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }

    /// Serves these objects under that name until the program is ended. Returns its exit status.
    int serve(const QString& service, const QStringList& paths) {
        QDBusConnection bus = QDBusConnection::sessionBus();
        for (const QString& path : paths) {
            if (!bus.registerVirtualObject(path, this)) {
                return 1;
            }
        }
        if (!bus.registerService(service)) {
            return 1;
        }
        say("ready");
        return QCoreApplication::exec();
    }

private:
    std::ofstream file_;
};
