#include "LaunchKit/Changes/ChangeRecovery.h"
#include "LaunchKit/InstanceRegistry.h"
#include "Platform/windows/ActivationTokens.h"
#include "QuorvelApp/QuorvelApp.h"
#include "QuorvelApp/model/SystemTranslator.h"
#include "QuorvelApp/theme/Appearance.h"
#include "QuorvelApp/widgets/SystemFilePanels.h"

#include <QApplication>
#include <QIcon>
#include <QOperatingSystemVersion>

#include <cstdio>
#include <string_view>

namespace {

// Restores clones after interrupted changes before they are listed; the leftovers can wait.
void putRight(quorvel::BackgroundTasks& tasks) {
    const std::vector<std::filesystem::path> folders =
        quorvel::InstanceRegistry::defaultSearchDirs();
    quorvel::restoreClones(folders);
    tasks.start(quorvel::TaskPriority::utility, [folders] { quorvel::removeLeftovers(folders); });
}

} // namespace

int main(int argc, char** argv) {
    // Answered without a display.
    if (argc == 2 && std::string_view(argv[1]) == "--version") {
        return std::puts("quorvel " QUORVEL_VERSION) < 0 ? 1 : 0;
    }
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    quorvel::keepNoDialogState();
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("quorvel"));
    QApplication::setApplicationDisplayName(QStringLiteral("Quorvel"));
    QApplication::setApplicationVersion(QStringLiteral(QUORVEL_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("app.quorvel.Quorvel"));
    if (QOperatingSystemVersion::currentType() != QOperatingSystemVersion::MacOS) {
        // On macOS, the bundle's own icon is shown.
        QApplication::setWindowIcon(QIcon(QStringLiteral(":/packaging/app.quorvel.Quorvel.svg")));
    }
    QApplication::setQuitOnLastWindowClosed(true);
    quorvel::SystemTranslator words;
    QApplication::installTranslator(&words);
    const quorvel::Appearance appearance;
    const quorvel::ActivationTokens tokens;
    quorvel::AppServices services = quorvel::AppServices::system([&] { return tokens.take(); });
    putRight(*services.tasks);
    quorvel::QuorvelApp quorvel(std::move(services), quorvel::makeSystemUpdateService());
    quorvel.start();
    return QApplication::exec();
}
