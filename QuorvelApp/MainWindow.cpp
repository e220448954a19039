#include "QuorvelApp/MainWindow.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QSettings>

#include <utility>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

const auto geometryKey = u"window/geometry"_s;

// Named here, so that the file is the same whoever starts the program.
QSettings settings() {
    return QSettings(u"Quorvel"_s, u"Quorvel"_s);
}

} // namespace

MainWindow::MainWindow(AppModel& model, UpdaterController& updater, IconLoader& icons,
                       FilePanels panels)
    : model_(model),
      content_(new ContentView(model, icons, std::move(panels), this)) {
    setWindowTitle(u"Quorvel"_s);
    content_->setMinimumSize(smallest);
    resize(initial);
    setCentralWidget(content_);
    addCommands(updater);
    restoreGeometry(settings().value(geometryKey).toByteArray());
}

void MainWindow::addCommands(UpdaterController& updater) {
    // Left to itself, macOS would guess from a command's words which ones belong into its own menu.
    QAction* check = menuBar()->addMenu(tr("&Quorvel"))->addAction(tr("&Check for Updates…"));
    check->setMenuRole(QAction::ApplicationSpecificRole);
    check->setEnabled(updater.canCheckForUpdates());
    connect(&updater, &UpdaterController::canCheckForUpdatesChanged, check, &QAction::setEnabled);
    connect(check, &QAction::triggered, &updater, &UpdaterController::checkForUpdates);

    QAction* add = menuBar()->addMenu(tr("&File"))->addAction(tr("&New Clone…"));
    add->setMenuRole(QAction::NoRole);
    add->setShortcut(QKeySequence::New);
    connect(add, &QAction::triggered, this, [this] { model_.setStartNewCloneRequested(true); });

    QAction* refresh = menuBar()->addMenu(tr("&View"))->addAction(tr("&Refresh"));
    refresh->setMenuRole(QAction::NoRole);
    refresh->setShortcut(Qt::CTRL | Qt::Key_R);
    connect(refresh, &QAction::triggered, &model_, &AppModel::reload);
}

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (!std::exchange(listed_, true)) {
        model_.reload();
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    settings().setValue(geometryKey, saveGeometry());
    QMainWindow::closeEvent(event);
}

} // namespace quorvel
