#include "QuorvelApp/model/CloneListModel.h"

#include "LaunchKit/InstanceRecord.h"
#include "LaunchKit/Wrappers/WrapperLayout.h"
#include "Presentation/CloneFacts.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace quorvel {
namespace {

std::unordered_set<std::string> idsOf(const std::vector<InstanceRecord>& clones) {
    std::unordered_set<std::string> ids;
    for (const InstanceRecord& record : clones) {
        ids.insert(record.id());
    }
    return ids;
}

// Two search folders may be the same one, which repeats its clones.
bool hasRepeated(const std::vector<InstanceRecord>& clones) {
    return idsOf(clones).size() != clones.size();
}

} // namespace

// Does not access the disk, since it is called at each painting.
std::filesystem::path iconPathOf(const InstanceRecord& clone) {
    return iconOf(clone.id());
}

CloneListModel::CloneListModel(QObject* parent) : QAbstractListModel(parent) {}

CloneListModel::~CloneListModel() = default;

void CloneListModel::setClones(const std::vector<InstanceRecord>& clones) {
    if (hasRepeated(clones) || hasRepeated(clones_) || !keepsOrder(clones)) {
        beginResetModel();
        clones_ = clones;
        endResetModel();
        return;
    }
    removeVanished(clones);
    insertNew(clones);
    clones_ = clones;
    if (!clones_.empty()) {
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
    }
}

// Returns whether the remaining clones are in the same order in both lists.
bool CloneListModel::keepsOrder(const std::vector<InstanceRecord>& clones) const {
    std::unordered_map<std::string, std::size_t> place;
    for (std::size_t row = 0; row < clones.size(); ++row) {
        place[clones[row].id()] = row;
    }
    std::size_t last = 0;
    for (const InstanceRecord& record : clones_) {
        const auto found = place.find(record.id());
        if (found != place.end()) {
            if (found->second < last) {
                return false;
            }
            last = found->second;
        }
    }
    return true;
}

void CloneListModel::removeVanished(const std::vector<InstanceRecord>& clones) {
    const auto stay = idsOf(clones);
    for (int last = rowCount() - 1; last >= 0; --last) {
        int first = last + 1;
        while (first > 0 && !stay.contains(clone(first - 1).id())) {
            --first;
        }
        if (first <= last) {
            beginRemoveRows({}, first, last);
            clones_.erase(clones_.begin() + first, clones_.begin() + last + 1);
            endRemoveRows();
            last = first;
        }
    }
}

void CloneListModel::insertNew(const std::vector<InstanceRecord>& clones) {
    const auto known = idsOf(clones_);
    const int count = static_cast<int>(clones.size());
    for (int first = 0; first < count; ++first) {
        int end = first;
        while (end < count && !known.contains(clones[static_cast<std::size_t>(end)].id())) {
            ++end;
        }
        if (end > first) {
            beginInsertRows({}, first, end - 1);
            clones_.insert(clones_.begin() + first, clones.begin() + first, clones.begin() + end);
            endInsertRows();
            first = end;
        }
    }
}

void CloneListModel::setRunning(const std::set<std::string>& bundleIds) {
    if (running_ == bundleIds) {
        return;
    }
    running_ = bundleIds;
    if (!clones_.empty()) {
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {RunningRole});
    }
}

const InstanceRecord& CloneListModel::clone(int row) const {
    return clones_.at(static_cast<std::size_t>(row));
}

int CloneListModel::rowOf(const std::string& id) const {
    const auto found = std::find_if(clones_.begin(), clones_.end(),
                                    [&](const auto& record) { return record.id() == id; });
    return found == clones_.end() ? -1 : static_cast<int>(found - clones_.begin());
}

Qt::ItemFlags CloneListModel::flags(const QModelIndex& index) const {
    return QAbstractListModel::flags(index) | Qt::ItemIsEditable;
}

int CloneListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(clones_.size());
}

QVariant CloneListModel::data(const QModelIndex& index, int role) const {
    const InstanceRecord& record = clone(index.row());
    const bool running = running_.contains(record.config.bundleId);
    switch (role) {
    case NameRole:
        return displayLine(record.config.displayName);
    case Qt::EditRole: // as it is, since what is shown differently must not be written back
        return qtText(record.config.displayName);
    case SummaryRole:
        return displayLine(sourceSummary(record.config));
    case RunningRole:
        return running;
    case IconPathRole:
        return QVariant::fromValue(iconPathOf(record));
    case IdRole:
        return qtText(record.id());
    case Qt::AccessibleTextRole:
        return running ? tr("%1, Running").arg(displayLine(record.config.displayName))
                       : displayLine(record.config.displayName);
    case Qt::AccessibleDescriptionRole:
        return displayLine(sourceSummary(record.config));
    default:
        return {};
    }
}

} // namespace quorvel
