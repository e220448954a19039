#include "QuorvelApp/app/MainWindow.h"

#include "QuorvelApp/app/EditMenu.h"
#include "QuorvelApp/library/CloneCommands.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "QuorvelApp/widgets/Sheet.h"

#include <QApplication>
#include <QMenuBar>

#include <utility>

namespace quorvel {

using namespace Qt::StringLiterals;

MainWindow::MainWindow(AppModel& model, UpdaterController& updater, IconLoader& icons,
                       FilePanels panels)
    : model_(model),
      content_(new ContentView(model, icons, std::move(panels), this)) {
    setWindowTitle(u"Quorvel"_s);
    content_->setMinimumSize(smallest);
    resize(initial);
    setCentralWidget(content_);
    addCommands(updater);
}

// Without roles, macOS would guess from a command's text which menu it belongs in. It moves those
// of the application into its own menu, wherever they are.
void MainWindow::addCommands(UpdaterController& updater) {
    addFileMenu();
    menuBar()->addMenu(new EditMenu(this));

    QAction* refresh = menuBar()->addMenu(tr("&View"))->addAction(tr("&Refresh"));
    refresh->setMenuRole(QAction::NoRole);
    refresh->setShortcut(Qt::CTRL | Qt::Key_R);
    connect(refresh, &QAction::triggered, &model_, &AppModel::reload);
    addCloneMenu();

    QMenu* help = menuBar()->addMenu(tr("&Help"));
    QAction* check = help->addAction(tr("&Check for Updates…"));
    check->setMenuRole(QAction::ApplicationSpecificRole);
    check->setEnabled(updater.canCheckForUpdates());
    connect(&updater, &UpdaterController::canCheckForUpdatesChanged, check, &QAction::setEnabled);
    connect(check, &QAction::triggered, &updater, &UpdaterController::checkForUpdates);
    QAction* about = help->addAction(tr("&About Quorvel"));
    about->setMenuRole(QAction::AboutRole);
    connect(about, &QAction::triggered, this, &MainWindow::showAbout);
}

void MainWindow::addFileMenu() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    QAction* add = file->addAction(tr("&New Clone…"));
    add->setMenuRole(QAction::NoRole);
    add->setShortcut(QKeySequence::New);
    connect(add, &QAction::triggered, this, [this] { model_.setStartNewCloneRequested(true); });
    file->addSeparator();
    QAction* close = file->addAction(tr("&Close"));
    close->setMenuRole(QAction::NoRole);
    close->setShortcut(Qt::CTRL | Qt::Key_W); // the standard keys differ between desktops
    connect(close, &QAction::triggered, this, &QWidget::close);
    QAction* quit = file->addAction(tr("&Quit"));
    quit->setMenuRole(QAction::QuitRole);
    quit->setShortcut(Qt::CTRL | Qt::Key_Q);
    connect(quit, &QAction::triggered, qApp, &QApplication::quit);
}

void MainWindow::addCloneMenu() {
    QMenu* menu = menuBar()->addMenu(tr("&Clone"));
    content_->commands().addTo(*menu);
    content_->commands().addGeneralTo(*menu);
}

void MainWindow::showAbout() {
    if (about_) {
        return;
    }
    auto* panel = new MessageSheet(
        u"app"_s, Ink::accent, u"Quorvel"_s,
        tr("Version %1").arg(QCoreApplication::applicationVersion()) + u"\n\n"_s +
            tr("Makes isolated clones of apps, each with accounts and settings of its own."),
        {{.label = tr("OK"), .look = ButtonLook::prominent, .onEscape = true, .isDefault = true}});
    panel->setWindowTitle(tr("About Quorvel"));
    about_ = new Sheet(panel, content_, Sheet::Place::middle);
}

void MainWindow::showEvent(QShowEvent* event) {
    QMainWindow::showEvent(event);
    if (!std::exchange(listed_, true)) {
        model_.reload();
        model_.repairMenu();
    }
}

} // namespace quorvel
