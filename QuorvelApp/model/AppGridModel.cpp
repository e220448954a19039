#include "QuorvelApp/model/AppGridModel.h"

#include "QuorvelApp/model/DisplayText.h"

namespace quorvel {

std::filesystem::path iconSource(const InstalledApp& app) {
    return app.themeIcon.value_or(app.url);
}

AppGridModel::AppGridModel(const std::map<std::string, bool>& sandboxStatus, QObject* parent)
    : QAbstractListModel(parent),
      status_(sandboxStatus) {}

void AppGridModel::setApps(std::vector<InstalledApp> apps) {
    if (apps == apps_) {
        return;
    }
    beginResetModel();
    apps_ = std::move(apps);
    rows_.clear();
    for (std::size_t row = 0; row < apps_.size(); ++row) {
        rows_[apps_[row].id()] = static_cast<int>(row);
    }
    endResetModel();
}

void AppGridModel::sandboxStatusChanged(const std::string& path) {
    const int row = rowOf(path);
    if (row >= 0) {
        Q_EMIT dataChanged(index(row), index(row));
    }
}

const InstalledApp& AppGridModel::app(int row) const {
    return apps_.at(static_cast<std::size_t>(row));
}

int AppGridModel::rowOf(const std::string& id) const {
    const auto found = rows_.find(id);
    return found == rows_.end() ? -1 : found->second;
}

int AppGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(apps_.size());
}

bool AppGridModel::isSandboxed(const InstalledApp& app) const {
    const auto found = status_.find(app.id());
    return found != status_.end() && found->second;
}

QVariant AppGridModel::data(const QModelIndex& index, int role) const {
    const InstalledApp& item = app(index.row());
    switch (role) {
    case Qt::DisplayRole:
        return displayLine(item.name);
    case IconPathRole:
        return QVariant::fromValue(iconSource(item));
    case SandboxedRole:
        return isSandboxed(item);
    case Qt::AccessibleDescriptionRole:
        return isSandboxed(item)
                   ? tr("Sandboxed — you'll get a separate Dock icon, but macOS won't let "
                        "Quorvel isolate its data")
                   : QString();
    default:
        return {};
    }
}

} // namespace quorvel
