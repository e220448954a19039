#include "Platform/windows/PlasmaWindows_linux.h"

#include "Platform/homes/SessionBusAddress.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryFile>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>

namespace quorvel {
namespace {

const auto service = QStringLiteral("org.kde.KWin");
const auto runnerPath = QStringLiteral("/WindowsRunner");
const auto runner = QStringLiteral("org.kde.krunner1");
const auto scripting = QStringLiteral("/Scripting");
const auto scripts = QStringLiteral("org.kde.kwin.Scripting");
constexpr int patience = 2000; // milliseconds, for each call

// Shows the topmost window of these processes. A script that fails is unloaded.
constexpr auto showingScript = R"(
const processes = [%1];
const all = workspace.windowList ? workspace.windowList() : workspace.clientList();
const found = all.filter(one => processes.includes(one.pid) && one.normalWindow);
if (found.length === 0) {
    throw new Error("no such window");
}
const topmost = found[found.length - 1];
if (workspace.windowList) {
    workspace.activeWindow = topmost;
} else {
    workspace.activeClient = topmost;
}
)";

QDBusMessage ask(const QString& path, const QString& interface, const QString& method,
                 const QVariantList& arguments = {}) {
    QDBusMessage call = QDBusMessage::createMethodCall(service, path, interface, method);
    call.setArguments(arguments);
    return QDBusConnection::sessionBus().call(call, QDBus::Block, patience);
}

// Returns the identifiers of what the search finds: an action, "_" and the window's own. An empty
// search finds every window, some of them twice.
QStringList matches() {
    const QDBusMessage reply = ask(runnerPath, runner, QStringLiteral("Match"), {QString()});
    QStringList ids;
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty() ||
        reply.signature() != QStringLiteral("a(sssida{sv})")) {
        return ids;
    }
    const auto list = reply.arguments().constFirst().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QString id;
        QString text;
        QString icon;
        int kind = 0;
        double relevance = 0;
        QVariantMap properties;
        list.beginStructure();
        list >> id >> text >> icon >> kind >> relevance >> properties;
        list.endStructure();
        ids.append(id);
    }
    list.endArray();
    ids.removeDuplicates();
    return ids;
}

bool isOwnedBy(const WindowOwner& owner, const QString& id) {
    const QString window = id.mid(id.indexOf(u'_') + 1);
    const QDBusMessage reply =
        ask(QStringLiteral("/KWin"), service, QStringLiteral("getWindowInfo"), {window});
    if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
        return false;
    }
    const auto facts = qdbus_cast<QVariantMap>(reply.arguments().constFirst());
    const auto fact = [&](const char* name) {
        return facts.value(QString::fromLatin1(name)).toString().toStdString();
    };
    return owner.hasProcess(facts.value(QStringLiteral("pid")).toInt()) ||
           owner.hasClass(fact("desktopFile")) || owner.hasClass(fact("resourceClass")) ||
           owner.hasClass(fact("resourceName"));
}

// KWin lets its scripts see the process of every window; older ones offer it nowhere else.
bool activateByScript(const WindowOwner& owner) {
    QStringList processes;
    for (const pid_t process : owner.processes) {
        processes.append(QString::number(process));
    }
    QTemporaryFile file(QDir::tempPath() + QStringLiteral("/quorvel-XXXXXX.js"));
    if (!file.open() ||
        file.write(QString::fromLatin1(showingScript).arg(processes.join(u',')).toUtf8()) < 0 ||
        !file.flush()) {
        return false;
    }
    const QString name = QStringLiteral("quorvel-%1").arg(QCoreApplication::applicationPid());
    const QDBusMessage loaded =
        ask(scripting, scripts, QStringLiteral("loadScript"), {file.fileName(), name});
    const int number = loaded.arguments().value(0, -1).toInt();
    if (number < 0) {
        return false;
    }
    // Its path depends on the version.
    for (const QString& path : {scripting + QStringLiteral("/Script%1"), QStringLiteral("/%1")}) {
        ask(path.arg(number), QStringLiteral("org.kde.kwin.Script"), QStringLiteral("run"));
    }
    const bool done = ask(scripting, scripts, QStringLiteral("isScriptLoaded"), {name})
                          .arguments()
                          .value(0)
                          .toBool();
    ask(scripting, scripts, QStringLiteral("unloadScript"), {name});
    return done;
}

} // namespace

bool activateInPlasma(const WindowOwner& owner) {
    if (!sessionBusAddress(currentEnvironment())) {
        return false;
    }
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !bus.interface()->isServiceRegistered(service)) {
        return false;
    }
    for (const QString& id : matches()) {
        if (isOwnedBy(owner, id)) {
            const QDBusMessage reply =
                ask(runnerPath, runner, QStringLiteral("Run"), {id, QString()});
            return reply.type() == QDBusMessage::ReplyMessage;
        }
    }
    return activateByScript(owner);
}

} // namespace quorvel
