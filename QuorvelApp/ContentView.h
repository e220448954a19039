#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/model/CloneChanges.h"
#include "QuorvelApp/widgets/IconLoader.h"
#include "QuorvelApp/widgets/SystemFilePanels.h"

#include <QPointer>
#include <QWidget>

class QStackedLayout;
class QLabel;

namespace quorvel {

class CloneCommands;
class CloneDetailView;
class ClonePanels;
class CloneSheets;
class ModelAlert;
class Sheet;
class Sidebar;

/// The main window's content: the list of clones, the details of the selected one, and above them
/// the new-clone sheet and the model's alerts.
class ContentView : public QWidget {
    Q_OBJECT

public:
    /// `model` and `icons` must outlive the widget.
    ContentView(AppModel& model, IconLoader& icons, FilePanels panels = systemFilePanels(),
                QWidget* parent = nullptr);

    /// Opens the new-clone sheet, unless it or another one at the top is open.
    void showNewClone();
    [[nodiscard]] bool showingNewClone() const { return !newClone_.isNull(); }
    [[nodiscard]] Sidebar& sidebar() const { return *sidebar_; }
    /// The commands on the selected clone.
    [[nodiscard]] CloneCommands& commands() const { return *commands_; }
    /// The changes that those commands make in the background.
    [[nodiscard]] CloneChanges& changes() { return changes_; }

protected:
    bool event(QEvent* event) override;

private:
    [[nodiscard]] QWidget* makeToolbar();
    [[nodiscard]] QWidget* makeColumns();
    [[nodiscard]] QWidget* makePlaceholder(QWidget* parent);
    CloneDetailView& detail();
    void connectCommands();
    void connectChanges();
    void blockCommands();
    void showSelection();
    void showActivity();
    void takeRequest();

    AppModel& model_;
    IconLoader& icons_;
    FilePanels panels_;
    CloneChanges changes_;
    CloneCommands* commands_;
    CloneSheets* sheets_;
    Sidebar* sidebar_ = nullptr;
    QStackedLayout* detailStates_ = nullptr;
    QLabel* placeholderText_ = nullptr;
    CloneDetailView* detail_ = nullptr;
    ClonePanels* clonePanels_;
    QPointer<Sheet> newClone_{};
};

} // namespace quorvel
