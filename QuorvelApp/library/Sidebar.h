#pragma once

#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/model/CloneListModel.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

#include <optional>
#include <string>

class QMenu;
class QStackedLayout;

namespace quorvel {

class CloneCommands;
class CloneList;

/// The list of clones, or an invitation to create the first.
class Sidebar : public QWidget {
    Q_OBJECT

public:
    static constexpr int minimumColumnWidth = 240;
    static constexpr int idealColumnWidth = 280;

    /// All must outlive the widget.
    Sidebar(AppModel& model, IconLoader& icons, CloneCommands& commands, QWidget* parent = nullptr);

    /// The selected clone's identity, which stays after its row is gone; std::nullopt if no clone
    /// is selected.
    [[nodiscard]] const std::optional<std::string>& selection() const { return selection_; }
    /// Selects the clone with that identity, if it is listed.
    void select(const std::string& id);
    /// Selects the clone with the identity `to` if that with `from` is selected.
    void follow(const std::string& from, const std::string& to);
    /// Lets the user edit the selected clone's name in the list.
    void editName();
    /// Returns whether the user is editing a name.
    [[nodiscard]] bool isEditing() const;

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void selectionChanged();
    void newCloneRequested();
    /// `isEditing` has changed.
    void editingChanged();
    /// The user has entered another name for a clone.
    void nameEntered(const quorvel::InstanceRecord& clone, const std::string& name);

private:
    [[nodiscard]] QWidget* makeEmptyState();
    [[nodiscard]] QWidget* makeList();
    void connectList(IconLoader& icons, CloneCommands& commands);
    void takeName(const std::string& id, const QString& name);
    void updateRows();
    void rowSelected();

    AppModel& model_;
    CloneListModel rows_{};
    QStackedLayout* states_;
    CloneList* list_ = nullptr;
    QMenu* menu_;
    std::optional<std::string> selection_{};
    bool updating_ = false;
};

} // namespace quorvel
