#include "QuorvelApp/panels/ClonePanels.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/NewCloneView.h"
#include "QuorvelApp/model/Continuation.h"
#include "QuorvelApp/model/EditedClone.h"
#include "QuorvelApp/panels/CopySheet.h"
#include "QuorvelApp/panels/DuplicateView.h"
#include "QuorvelApp/panels/EditCloneView.h"
#include "QuorvelApp/widgets/Sheet.h"

#include <utility>

namespace quorvel {

ClonePanels::ClonePanels(AppModel& model, IconLoader& icons, FilePanels panels, QWidget* window)
    : QObject(window),
      model_(model),
      icons_(icons),
      panels_(std::move(panels)),
      window_(window) {}

void ClonePanels::edit(const InstanceRecord& clone) {
    if (isOpen()) {
        return;
    }
    isReading_ = true;
    Q_EMIT openChanged();
    continued(model_.readForEditing(clone), this, [this](const QFuture<EditedClone>& outcome) {
        isReading_ = false;
        std::optional<std::string> failure;
        try {
            showEditor(outcome.result());
        } catch (const std::exception& error) {
            failure = error.what();
        }
        if (failure) {
            Q_EMIT openChanged();
            model_.reload();
            model_.setLastError(failure);
        }
    });
}

void ClonePanels::showEditor(EditedClone clone) {
    show(new EditCloneView(model_, icons_, panels_, std::move(clone)), NewCloneView::idealSize);
}

void ClonePanels::duplicate(const InstanceRecord& clone) {
    if (isOpen()) {
        return;
    }
    auto* panel = new DuplicateView(model_, icons_, clone);
    connect(&panel->session(), &DuplicateSession::copyBegan, this,
            [this](BackgroundCopy* copy) { showCopySheet(*copy, window_); });
    connect(&panel->session(), &DuplicateSession::duplicated, this, &ClonePanels::duplicated);
    show(panel, {});
}

void ClonePanels::show(QDialog* dialog, QSize ideal) {
    sheet_ = new Sheet(dialog, window_, Sheet::Place::top, ideal);
    connect(dialog, &QDialog::finished, this, [this] {
        sheet_.clear();
        Q_EMIT openChanged();
    });
}

} // namespace quorvel
