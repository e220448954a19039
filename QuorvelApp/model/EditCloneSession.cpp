#include "QuorvelApp/model/EditCloneSession.h"

#include "Presentation/ChangeTexts.h"
#include "Presentation/JoinedText.h"
#include "QuorvelApp/model/Continuation.h"
#include "QuorvelApp/model/Outcome.h"
#include "QuorvelApp/model/Translated.h"

#include <QPointer>

#include <utility>

namespace quorvel {
namespace {

void report(AppModel& model, const Outcome<ChangedClone>& outcome) {
    model.reload();
    if (!outcome.result) {
        model.setLastError(sentence(EditCloneSession::tr("Couldn't save: %1"), {outcome.failure}));
        return;
    }
    const ChangedClone& changed = *outcome.result;
    const bool isRunning = changed.isRunning || model.isRunning(changed.record);
    const std::string notes = joined(changeNotes(changed, isRunning, translated), "\n");
    if (!changed.warnings.empty()) {
        model.setLastError(notes);
    } else if (!notes.empty()) {
        model.setStatusMessage(notes);
    }
}

} // namespace

EditCloneSession::EditCloneSession(AppModel& model, FilePanels panels, EditedClone clone,
                                   QObject* parent)
    : NewCloneSession(model, std::move(panels), parent),
      clone_(std::move(clone)) {
    edit([this](NewCloneForm& form) { form = clone_.form(); });
    if (clone_.target) {
        continued(model.sandboxInfo(*clone_.target), this, [this](const SandboxInfo& info) {
            edit([&](NewCloneForm& form) {
                form.strategyReason = info.reason;
                form.selectedSandboxed = info.sandboxed;
            });
        });
    }
}

bool EditCloneSession::canSave() const {
    return !form().creating && isValidEdit(form()) && !clone_.edits(form()).empty();
}

void EditCloneSession::save() {
    if (!canSave()) {
        return;
    }
    const std::vector<CloneEdit> edits = clone_.edits(form());
    edit([](NewCloneForm& form) { form.creating = true; });
    // The outcome is reported even if the sheet has been closed meanwhile.
    model().services().tasks->detached(
        TaskPriority::userInitiated, &model(),
        capturingErrors(
            [clone = clone_, edits, icons = siteFolders()] { return clone.save(edits); }),
        [&model = model(), self = QPointer(this)](const Outcome<ChangedClone>& outcome) {
            report(model, outcome);
            if (self && outcome.result) {
                Q_EMIT self->saved();
            }
            if (self) {
                self->edit([](NewCloneForm& form) { form.creating = false; });
            }
        });
}

} // namespace quorvel
