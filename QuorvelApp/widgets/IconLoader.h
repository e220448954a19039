#pragma once

#include "QuorvelApp/model/BackgroundTasks.h"

#include <QCache>
#include <QObject>
#include <QPixmap>
#include <QSet>
#include <QString>

#include <filesystem>
#include <memory>

namespace quorvel {

/// Returns icons immediately, and better ones once they are loaded: files are read and decoded off
/// the main thread, at the size shown, and cached.
class IconLoader : public QObject {
    Q_OBJECT

public:
    explicit IconLoader(std::shared_ptr<BackgroundTasks> tasks, QObject* parent = nullptr);

    /// Returns the icon for a square of `size` points at that pixel ratio: a placeholder
    /// until `loaded` reports that the file was read, and permanently if it has no icon.
    [[nodiscard]] QPixmap icon(const std::filesystem::path& path, int size, double ratio);

    /// Marks all icons to be read again when next shown; the cached ones are shown until then.
    void refresh();

Q_SIGNALS:
    void loaded(const std::filesystem::path& path);

private:
    void load(const std::filesystem::path& path, const QString& key, int pixels, double ratio);
    [[nodiscard]] QPixmap standIn(const std::filesystem::path& path, int size, double ratio);

    std::shared_ptr<BackgroundTasks> tasks_;
    QCache<QString, QPixmap> known_; ///< costs are kilobytes
    QSet<QString> fresh_{};
    QSet<QString> underWay_{};
};

} // namespace quorvel
