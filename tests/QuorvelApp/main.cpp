#include "QuorvelApp/Appearance.h"
#include "tests/support/TemporaryHome.h"

#include <QApplication>
#include <QSettings>
#include <QStandardPaths>

#include <gmock/gmock.h>

// Every test runs in one application without a display, and never in the user's own settings.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    const quorvel::testing::TemporaryFolder settings;
    for (const auto format : {QSettings::NativeFormat, QSettings::IniFormat}) {
        QSettings::setPath(format, QSettings::UserScope,
                           QString::fromStdString(settings.path().string()));
    }
    const QApplication application(argc, argv);
    quorvel::Appearance::apply(quorvel::ColorScheme::light);
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
