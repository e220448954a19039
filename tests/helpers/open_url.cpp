// Opens an address as a Qt application does: open_url ADDRESS
#include <QDesktopServices>
#include <QGuiApplication>
#include <QUrl>

int main(int argc, char** argv) {
    const QGuiApplication application(argc, argv);
    if (QGuiApplication::arguments().size() != 2) {
        return 2;
    }
    return QDesktopServices::openUrl(QUrl(QGuiApplication::arguments().at(1))) ? 0 : 1;
}
