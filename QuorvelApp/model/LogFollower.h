#pragma once

#include "QuorvelApp/model/BackgroundTasks.h"

#include <QObject>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

namespace quorvel {

/// Follows a clone's log in the background as long as it lives: reads the end of what is there,
/// then what is added. Main thread only.
class LogFollower : public QObject {
    Q_OBJECT

public:
    /// The most bytes that are read of what is there.
    static constexpr std::uintmax_t most = std::uintmax_t{1} << 20U;
    /// A line of more UTF-16 units becomes several, since laying it out would block the window.
    static constexpr int longestLine = 1000;
    /// If more lines come at once, only the last ones are kept.
    static constexpr int mostLines = 10000;
    /// The most lines that one `read` has.
    static constexpr int linesAtOnce = 500;

    /// `home` is the clone's data folder, with "~" expanded.
    LogFollower(std::shared_ptr<BackgroundTasks> tasks, const std::string& home,
                QObject* parent = nullptr);
    ~LogFollower() override;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

Q_SIGNALS:
    /// The next piece of the log, safe to display.
    void read(const QString& text);
    /// That many bytes at the beginning are left out. Comes before the first piece, if at all.
    void skipped(std::uintmax_t bytes);

private:
    class Source;
    struct Piece;

    void readOn();
    void take(const Piece& piece);
    void handOut();

    std::shared_ptr<BackgroundTasks> tasks_;
    std::shared_ptr<Source> source_; ///< used by one thread at a time
    std::filesystem::path path_;
    QString waiting_{}; ///< what was read, but not handed out
};

} // namespace quorvel
