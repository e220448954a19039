#include "QuorvelApp/theme/Appearance.h"
#include "QuorvelApp/widgets/SystemFilePanels.h"

#include <QApplication>
#include <QStandardPaths>

#include <gmock/gmock.h>

// Every test runs in one application without a display, and like it without settings.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    quorvel::keepNoDialogState();
    const QApplication application(argc, argv);
    quorvel::Appearance::apply(quorvel::ColorScheme::light);
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
