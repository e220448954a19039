#pragma once

#include "QuorvelApp/model/EditedClone.h"
#include "QuorvelApp/model/NewCloneSession.h"

#include <vector>

namespace quorvel {

/// The state of one sheet that edits a clone. Its form is filled from the clone, and only what
/// differs in it is saved.
class EditCloneSession : public NewCloneSession {
    Q_OBJECT

public:
    EditCloneSession(AppModel& model, FilePanels panels, EditedClone clone,
                     QObject* parent = nullptr);

    [[nodiscard]] const EditedClone& clone() const { return clone_; }
    /// Returns whether something differs, all of it is valid, and nothing is being saved.
    [[nodiscard]] bool canSave() const;
    /// Saves what differs. Ends with `saved`, or with the model's `lastError`.
    void save();

Q_SIGNALS:
    void saved();

private:
    EditedClone clone_;
};

} // namespace quorvel
