#include "QuorvelApp/library/CloneCommands.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/theme/Shortcuts.h"

#include <QMenu>

namespace quorvel {

CloneCommands::CloneCommands(AppModel& model, CloneChanges& changes, QObject* parent)
    : QObject(parent),
      model_(model),
      changes_(changes),
      open_(tr("&Open")),
      edit_(tr("&Edit…")),
      rename_(tr("Re&name…")),
      duplicate_(tr("D&uplicate…")),
      refreshWrapper_(tr("Re&fresh Wrapper")),
      log_(tr("Show &Log")),
      reveal_(tr("&Reveal in Finder")),
      stop_(tr("&Stop")),
      cancelStop_(tr("&Cancel Stopping")),
      remove_(tr("&Delete…")),
      refreshAll_(tr("Refresh &Wrappers")) {
    edit_.setShortcut(Qt::CTRL | Qt::Key_E);
    rename_.setShortcut(Qt::Key_F2);
    duplicate_.setShortcut(Qt::CTRL | Qt::Key_D);
    remove_.setShortcuts(deletionKeys());
    remove_.setShortcutContext(Qt::WidgetShortcut); // elsewhere, the key may mean something else
    prepare(open_, &CloneCommands::openRequested);
    prepare(edit_, &CloneCommands::editRequested);
    prepare(rename_, &CloneCommands::renameRequested);
    prepare(duplicate_, &CloneCommands::duplicateRequested);
    prepare(refreshWrapper_, &CloneCommands::refreshRequested);
    prepare(log_, &CloneCommands::logRequested);
    prepare(reveal_, &CloneCommands::revealRequested);
    prepare(stop_, &CloneCommands::stopRequested);
    prepare(cancelStop_, &CloneCommands::stopCancelled);
    prepare(remove_, &CloneCommands::deletionRequested);
    refreshAll_.setMenuRole(QAction::NoRole);
    connect(&refreshAll_, &QAction::triggered, this, &CloneCommands::refreshAllRequested);
    connect(&model_, &AppModel::clonesChanged, this, &CloneCommands::refresh);
    connect(&model_, &AppModel::runningBundleIdsChanged, this, &CloneCommands::refresh);
    connect(&changes_, &CloneChanges::activityChanged, this, &CloneCommands::refresh);
    refresh();
}

void CloneCommands::prepare(QAction& action, Request request) {
    action.setMenuRole(QAction::NoRole);
    connect(&action, &QAction::triggered, this, [this, request] {
        if (const InstanceRecord* clone = id_ ? model_.clone(*id_) : nullptr) {
            Q_EMIT(this->*request)(InstanceRecord(*clone)); // the list may change meanwhile
        }
    });
}

void CloneCommands::setClone(const std::optional<std::string>& id) {
    id_ = id;
    refresh();
}

void CloneCommands::setBlocked(bool blocked) {
    blocked_ = blocked;
    refresh();
}

void CloneCommands::addTo(QMenu& menu) {
    menu.addActions({&open_, &edit_, &rename_, &duplicate_});
    menu.addSeparator();
    menu.addActions({&refreshWrapper_, &log_, &reveal_, &stop_, &cancelStop_});
    menu.addSeparator();
    menu.addAction(&remove_);
    // Nothing says when a clone ends that was started elsewhere.
    connect(&menu, &QMenu::aboutToShow, &model_, &AppModel::refreshRunningState);
}

void CloneCommands::addGeneralTo(QMenu& menu) {
    menu.addSeparator();
    menu.addAction(&refreshAll_);
}

void CloneCommands::refresh() {
    const InstanceRecord* clone = id_ && !blocked_ ? model_.clone(*id_) : nullptr;
    if (clone != nullptr && changes_.isChanging(*clone)) {
        clone = nullptr;
    }
    for (QAction* action :
         {&open_, &edit_, &rename_, &duplicate_, &refreshWrapper_, &reveal_, &remove_}) {
        action->setEnabled(clone != nullptr);
    }
    log_.setEnabled(clone != nullptr && clone->config.kind != ShortcutKind::file);
    const bool isStopping = clone != nullptr && changes_.isStopping(*clone);
    cancelStop_.setVisible(isStopping);
    stop_.setEnabled(clone != nullptr && !isStopping &&
                     (model_.isRunning(*clone) || isHomeInUse(clone->config)));
    refreshAll_.setEnabled(!blocked_ && !changes_.isRefreshing() && !model_.clones().empty());
}

} // namespace quorvel
