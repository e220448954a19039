#pragma once

#include "QuorvelApp/model/EditCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QDialog>

namespace quorvel {

/// The sheet in which a clone is edited: the panes of the new-clone sheet, filled from the clone.
class EditCloneView : public QDialog {
    Q_OBJECT

public:
    /// `model` and `icons` must outlive the sheet.
    EditCloneView(AppModel& model, IconLoader& icons, FilePanels panels, EditedClone clone);

    /// Returns the sheet's session, which lives as long as the sheet.
    [[nodiscard]] EditCloneSession& session() { return session_; }

    /// Does nothing while the clone is being saved, which can't be cancelled.
    void reject() override;

protected:
    /// Focuses the first field that can be edited.
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* makeHeader();

    EditCloneSession session_;
};

} // namespace quorvel
