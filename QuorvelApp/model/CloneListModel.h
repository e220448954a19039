#pragma once

#include <QAbstractListModel>

#include <set>
#include <string>
#include <vector>

namespace quorvel {

struct InstanceRecord;

/// The clones as rows. New lists are taken over row by row, so that views keep their selection and
/// their place.
class CloneListModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { NameRole = Qt::DisplayRole, SummaryRole = Qt::UserRole, RunningRole, IdRole };

    explicit CloneListModel(QObject* parent = nullptr);
    ~CloneListModel() override;

    void setClones(const std::vector<InstanceRecord>& clones);
    void setRunning(const std::set<std::string>& bundleIds);

    [[nodiscard]] const InstanceRecord& clone(int row) const;
    /// -1 when there is none.
    [[nodiscard]] int rowOf(const std::string& id) const;

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
