#pragma once

#include "LaunchKit/AppCatalog.h"

#include <QAbstractListModel>

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace quorvel {

/// The apps of the picker as items. Valid while the status map given to it is.
class AppGridModel : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { SandboxedRole = Qt::UserRole };

    /// `sandboxStatus` is by app path; an app that is missing there is unknown.
    explicit AppGridModel(const std::map<std::string, bool>& sandboxStatus,
                          QObject* parent = nullptr);

    /// Nothing happens when these are the apps already.
    void setApps(std::vector<InstalledApp> apps);
    void sandboxStatusChanged(const std::string& path);

    [[nodiscard]] const InstalledApp& app(int row) const;
    /// -1 when it is not there.
    [[nodiscard]] int rowOf(const std::string& id) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;

private:
    [[nodiscard]] bool isSandboxed(const InstalledApp& app) const;

    const std::map<std::string, bool>& status_;
    std::vector<InstalledApp> apps_{};
    std::unordered_map<std::string, int> rows_{};
};

} // namespace quorvel
