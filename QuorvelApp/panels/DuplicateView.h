#pragma once

#include "QuorvelApp/model/DuplicateSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QDialog>

class QLineEdit;

namespace quorvel {

/// The panel that asks how to duplicate a clone.
class DuplicateView : public QDialog {
    Q_OBJECT

public:
    /// `model` and `icons` must outlive the panel.
    DuplicateView(AppModel& model, IconLoader& icons, const InstanceRecord& original);

    /// Returns the panel's session, which lives as long as the panel.
    [[nodiscard]] DuplicateSession& session() { return session_; }

    /// Does nothing while the duplicate is being made; a copy of data has a panel that cancels it.
    void reject() override;

protected:
    /// Focuses the name and selects it.
    void showEvent(QShowEvent* event) override;

private:
    [[nodiscard]] QWidget* makeHeader(IconLoader& icons);
    [[nodiscard]] QWidget* makeName();
    [[nodiscard]] QWidget* makeDataBox();

    DuplicateSession session_;
    QLineEdit* name_ = nullptr;
};

} // namespace quorvel
