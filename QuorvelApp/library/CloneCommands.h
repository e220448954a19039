#pragma once

#include "QuorvelApp/model/CloneChanges.h"

#include <QAction>
#include <QList>
#include <QObject>

#include <optional>
#include <string>

class QMenu;

namespace quorvel {

class AppModel;

/// The commands on the selected clone, shared by the menu bar, the context menu of the list and the
/// keys. Each is enabled while it can do something.
class CloneCommands : public QObject {
    Q_OBJECT

public:
    /// Both must outlive it.
    CloneCommands(AppModel& model, CloneChanges& changes, QObject* parent = nullptr);

    /// Sets the clone that the commands act on, by its identity.
    void setClone(const std::optional<std::string>& id);
    /// Disables all commands while `blocked`, as while a sheet shows or a name is edited.
    void setBlocked(bool blocked);

    /// Adds the commands on one clone to a menu, which then keeps them up to date.
    void addTo(QMenu& menu);
    /// Adds those that are for all clones.
    void addGeneralTo(QMenu& menu);

    /// Returns the command that opens the clone, for the keys of the list.
    [[nodiscard]] QAction& opening() { return open_; }
    /// Returns the command that deletes the clone, for the keys of the list.
    [[nodiscard]] QAction& deletion() { return remove_; }

Q_SIGNALS:
    void openRequested(const quorvel::InstanceRecord& clone);
    void editRequested(const quorvel::InstanceRecord& clone);
    void renameRequested(const quorvel::InstanceRecord& clone);
    void duplicateRequested(const quorvel::InstanceRecord& clone);
    void refreshRequested(const quorvel::InstanceRecord& clone);
    void refreshAllRequested();
    void logRequested(const quorvel::InstanceRecord& clone);
    void revealRequested(const quorvel::InstanceRecord& clone);
    void stopRequested(const quorvel::InstanceRecord& clone);
    void stopCancelled(const quorvel::InstanceRecord& clone);
    void deletionRequested(const quorvel::InstanceRecord& clone);

private:
    using Request = void (CloneCommands::*)(const InstanceRecord&);

    void prepare(QAction& action, Request request);
    void refresh();

    AppModel& model_;
    CloneChanges& changes_;
    std::optional<std::string> id_{};
    bool blocked_ = false;
    QAction open_;
    QAction edit_;
    QAction rename_;
    QAction duplicate_;
    QAction refreshWrapper_;
    QAction log_;
    QAction reveal_;
    QAction stop_;
    QAction cancelStop_; ///< only shown while the clone is being stopped
    QAction remove_;
    QAction refreshAll_;
};

} // namespace quorvel
