#pragma once

#include "QuorvelApp/model/BackgroundTasks.h"

#include <QCache>
#include <QImage>
#include <QObject>
#include <QPixmap>
#include <QSet>
#include <QString>

#include <filesystem>
#include <memory>

namespace quorvel {

/// The image of a file or bundle, for a square of `pixels`: a bundle's own icon, what an `.icns`
/// file holds, else null. Any thread; hostile files give null.
[[nodiscard]] QImage loadIconImage(const std::filesystem::path& path, int pixels);

/// Gives icons at once, and better ones as soon as they are read: the files are opened and decoded
/// off the main thread, at the size shown, and kept.
class IconLoader : public QObject {
    Q_OBJECT

public:
    explicit IconLoader(std::shared_ptr<BackgroundTasks> tasks, QObject* parent = nullptr);

    /// The icon for a square of `size` at that pixel ratio. A stand-in until `loaded` tells that
    /// the file was read, and for good where it has no icon.
    [[nodiscard]] QPixmap icon(const std::filesystem::path& path, int size, double ratio);

    /// Reads files anew when they are shown next; what was read before shows until then.
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
