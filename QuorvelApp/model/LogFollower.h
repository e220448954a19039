#pragma once

#include "QuorvelApp/model/BackgroundTasks.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace quorvel {

/// Reads a clone's log in the background, as long as it lives: what is there, but no more than its
/// end, then what is added. Main thread only.
class LogFollower : public QObject {
    Q_OBJECT

public:
    /// No more is read of what is there.
    static constexpr std::uintmax_t most = std::uintmax_t{1} << 20U;
    /// A longer line becomes several, since laying it out would block the window.
    static constexpr int longestLine = 1000;

    /// For the clone with this data folder, which must be expanded.
    LogFollower(std::shared_ptr<BackgroundTasks> tasks, const std::string& home,
                QObject* parent = nullptr);
    ~LogFollower() override;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

Q_SIGNALS:
    /// The next piece of the log, harmless to show.
    void read(const QString& text);
    /// That many bytes at the beginning are left out. Comes before the first piece, if at all.
    void skipped(std::uintmax_t bytes);

private:
    class Source;
    struct Piece;

    void readOn();
    void take(const Piece& piece);

    std::shared_ptr<BackgroundTasks> tasks_;
    std::shared_ptr<Source> source_; ///< used by one thread at a time
    std::filesystem::path path_;
};

} // namespace quorvel
