#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/model/FilePanels.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QObject>
#include <QPointer>

class QDialog;
class QWidget;

namespace quorvel {

struct EditedClone;
class Sheet;

/// Opens the sheets that edit and duplicate a clone, one at a time.
class ClonePanels : public QObject {
    Q_OBJECT

public:
    /// The sheets show over `window`, which owns this. `model` and `icons` must outlive it.
    ClonePanels(AppModel& model, IconLoader& icons, FilePanels panels, QWidget* window);

    /// Returns whether one of the sheets shows, or is about to.
    [[nodiscard]] bool isOpen() const { return isReading_ || !sheet_.isNull(); }
    /// Returns whether a clone is being read, whose sheet then shows.
    [[nodiscard]] bool isReading() const { return isReading_; }

    /// Opens the sheet that edits the clone, once that is read. A failure becomes the model's
    /// `lastError`.
    void edit(const InstanceRecord& clone);
    /// Opens the panel that duplicates the clone.
    void duplicate(const InstanceRecord& clone);

Q_SIGNALS:
    /// `isOpen` may have changed.
    void openChanged();
    /// A duplicate was made, which has this identity.
    void duplicated(const std::string& id);

private:
    void show(QDialog* dialog, QSize ideal);
    void showEditor(EditedClone clone);

    AppModel& model_;
    IconLoader& icons_;
    FilePanels panels_;
    QWidget* window_;
    QPointer<Sheet> sheet_{};
    bool isReading_ = false;
};

} // namespace quorvel
