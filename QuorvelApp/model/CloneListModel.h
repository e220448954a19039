#pragma once

#include <QAbstractListModel>

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace quorvel {

struct InstanceRecord;

/// Returns the file of a clone's icon, which may not exist.
[[nodiscard]] std::filesystem::path iconPathOf(const InstanceRecord& clone);

/// The clones as rows. A new list is merged row by row, so that views keep their selection and
/// scroll position.
class CloneListModel : public QAbstractListModel {
    Q_OBJECT

public:
    /// `IconPathRole` is a `std::filesystem::path`.
    enum Role {
        NameRole = Qt::DisplayRole,
        SummaryRole = Qt::UserRole,
        RunningRole,
        IconPathRole,
        IdRole
    };

    explicit CloneListModel(QObject* parent = nullptr);
    ~CloneListModel() override;

    /// Replaces the clones.
    void setClones(const std::vector<InstanceRecord>& clones);
    /// Replaces the bundle identifiers of the wrappers that run.
    void setRunning(const std::set<std::string>& bundleIds);

    /// Returns the clone of a row. Throws `std::out_of_range` if there is no such row.
    [[nodiscard]] const InstanceRecord& clone(int row) const;
    /// Returns the row of the clone with that identity, or -1.
    [[nodiscard]] int rowOf(const std::string& id) const;

    /// Names can be edited, though not by `setData`: the delegate requests the change.
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    [[nodiscard]] bool keepsOrder(const std::vector<InstanceRecord>& clones) const;
    void removeVanished(const std::vector<InstanceRecord>& clones);
    void insertNew(const std::vector<InstanceRecord>& clones);

    std::vector<InstanceRecord> clones_;
    std::set<std::string> running_{};
};

} // namespace quorvel
