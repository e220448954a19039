#include "QuorvelApp/Appearance.h"
#include "QuorvelApp/FilePanels.h"
#include "QuorvelApp/QuorvelApp.h"

#include <QApplication>
#include <QIcon>
#include <QOperatingSystemVersion>

int main(int argc, char** argv) {
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    quorvel::keepNoDialogState();
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel"));
    QApplication::setApplicationDisplayName(QStringLiteral("Quorvel"));
    QApplication::setDesktopFileName(QStringLiteral("app.quorvel.Quorvel"));
    if (QOperatingSystemVersion::currentType() != QOperatingSystemVersion::MacOS) {
        // There the bundle's own icon shows.
        QApplication::setWindowIcon(QIcon(QStringLiteral(":/packaging/app.quorvel.Quorvel.svg")));
    }
    QApplication::setQuitOnLastWindowClosed(true);
    const quorvel::Appearance appearance;
    quorvel::QuorvelApp quorvel(quorvel::AppServices::ofTheSystem(),
                                quorvel::makeSystemUpdateService());
    quorvel.start();
    return QApplication::exec();
}
