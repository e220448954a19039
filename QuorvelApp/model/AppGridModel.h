#pragma once

#include "LaunchKit/AppCatalog.h"

#include <QAbstractListModel>

#include <filesystem>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace quorvel {

/// Returns what to load the app's icon from: the file that the scan found, or else the app itself.
[[nodiscard]] std::filesystem::path iconSource(const InstalledApp& app);

/// The apps of the picker as items.
class AppGridModel : public QAbstractListModel {
    Q_OBJECT

public:
    /// `IconPathRole` is the `iconSource`. The accessible description is the help for sandboxed
    /// apps.
    enum Role { SandboxedRole = Qt::UserRole, IconPathRole };

    /// `sandboxStatus` is by app path and must outlive the model; a missing app's status is
    /// unknown.
    explicit AppGridModel(const std::map<std::string, bool>& sandboxStatus,
                          QObject* parent = nullptr);

    /// Replaces the apps. Does nothing if they are the same.
    void setApps(std::vector<InstalledApp> apps);
    /// Announces that the status of the app at `path` changed.
    void sandboxStatusChanged(const std::string& path);

    /// Returns the app of a row. Throws `std::out_of_range` if there is no such row.
    [[nodiscard]] const InstalledApp& app(int row) const;
    /// Returns the row of the app with that identity, or -1.
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
