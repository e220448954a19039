#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QDialog>

class QPushButton;

namespace quorvel {

class Spinner;

/// The sheet in which a clone is made: header, target pane, configuration pane and footer.
class NewCloneView : public QDialog {
    Q_OBJECT

public:
    static constexpr QSize idealSize{880, 590};

    /// Both must outlive the sheet.
    NewCloneView(AppModel& model, IconLoader& icons, FilePanels panels);

    /// Returns the sheet's session, which lives as long as the sheet.
    [[nodiscard]] NewCloneSession& session() { return session_; }

private:
    [[nodiscard]] QWidget* makeHeader();
    [[nodiscard]] QWidget* makePanes(IconLoader& icons);
    [[nodiscard]] QWidget* makeFooter();
    void refresh();
    void placeSpinner();

    NewCloneSession session_;
    QWidget* searchField_ = nullptr;
    QPushButton* create_ = nullptr;
    Spinner* creating_ = nullptr;
};

} // namespace quorvel
