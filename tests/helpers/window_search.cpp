// Replaces KWin's search for windows on the session bus: it knows two windows, and writes the one
// that it is asked to show into the file given as its argument.
#include "tests/helpers/BusRecorder.h"

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMetaType>

struct Match {
    QString id{};
    QString text{};
    QString icon{};
    int kind = 100;
    double relevance = 1;
    QVariantMap properties{};
};
Q_DECLARE_METATYPE(Match)

QDBusArgument& operator<<(QDBusArgument& argument, const Match& match) {
    argument.beginStructure();
    argument << match.id << match.text << match.icon << match.kind << match.relevance
             << match.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Match& match) {
    argument.beginStructure();
    argument >> match.id >> match.text >> match.icon >> match.kind >> match.relevance >>
        match.properties;
    argument.endStructure();
    return argument;
}

namespace {

class WindowSearch final : public BusRecorder {
public:
    using BusRecorder::BusRecorder;

    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QString text = message.arguments().value(0).toString();
        if (message.member() == QStringLiteral("Match")) {
            const QList<Match> all{{.id = QStringLiteral("0_{one}")},
                                   {.id = QStringLiteral("0_{two}")},
                                   {.id = QStringLiteral("0_{one}")}};
            return connection.send(
                message.createReply(QVariant::fromValue(text.isEmpty() ? all : QList<Match>())));
        }
        if (message.member() == QStringLiteral("getWindowInfo")) {
            const bool first = text == QStringLiteral("{one}");
            const QString name = first ? QStringLiteral("One") : QStringLiteral("Two");
            QVariantMap facts{{QStringLiteral("resourceClass"), name},
                              {QStringLiteral("desktopFile"), name}};
            if (!first) {
                facts.insert(QStringLiteral("pid"), 4711);
            }
            return connection.send(message.createReply(facts));
        }
        if (message.member() == QStringLiteral("loadScript")) {
            QFile file(text);
            loaded_ = file.open(QIODevice::ReadOnly);
            script_ = QString::fromUtf8(file.readAll());
            return connection.send(message.createReply(7));
        }
        if (message.member() == QStringLiteral("run")) {
            // A window of process 815, which no search reports; a script that fails is unloaded.
            loaded_ = script_.contains(QRegularExpression(QStringLiteral("\\[(.*,)?815(,.*)?\\]")));
            say("run " + std::string(loaded_ ? "found" : "failed"));
            return connection.send(message.createReply());
        }
        if (message.member() == QStringLiteral("isScriptLoaded")) {
            return connection.send(message.createReply(loaded_));
        }
        if (message.member() == QStringLiteral("unloadScript")) {
            loaded_ = false;
            say("unloaded");
            return connection.send(message.createReply(true));
        }
        say(message.member().toStdString() + " " + text.toStdString());
        return connection.send(message.createReply());
    }

private:
    QString script_{};
    bool loaded_ = false;
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    if (argc < 2) {
        return 2;
    }
    qDBusRegisterMetaType<Match>();
    qDBusRegisterMetaType<QList<Match>>();
    return WindowSearch(argv[1]).serve(QStringLiteral("org.kde.KWin"),
                                       {QStringLiteral("/WindowsRunner"), QStringLiteral("/KWin"),
                                        QStringLiteral("/Scripting"), QStringLiteral("/7")});
}
