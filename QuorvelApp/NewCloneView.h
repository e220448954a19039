#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QDialog>

namespace quorvel {

class SheetFooter;

/// The sheet in which a clone is made: header, target pane, configuration pane and footer.
class NewCloneView : public QDialog {
    Q_OBJECT

public:
    static constexpr QSize idealSize{880, 590};

    /// `model` and `icons` must outlive the sheet.
    NewCloneView(AppModel& model, IconLoader& icons, FilePanels panels);

    /// Returns the sheet's session, which lives as long as the sheet.
    [[nodiscard]] NewCloneSession& session() { return session_; }

private:
    [[nodiscard]] QWidget* makeHeader();
    void refresh();

    NewCloneSession session_;
    QWidget* searchField_ = nullptr;
    SheetFooter* footer_ = nullptr;
};

} // namespace quorvel
