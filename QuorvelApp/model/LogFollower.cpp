#include "QuorvelApp/model/LogFollower.h"

#include "LaunchKit/Launching/LogReader.h"
#include "Presentation/SafeLog.h"
#include "QuorvelApp/model/QtText.h"

#include <QTimer>

#include <chrono>
#include <utility>

namespace quorvel {
namespace {

constexpr std::chrono::milliseconds pauseAtTheEnd{250};

// Breaks lines that are too long, wherever the pieces begin.
class LineBreaker {
public:
    explicit LineBreaker(int longest) : longest_(longest) {}

    QString operator()(const QString& text) {
        QString result;
        result.reserve(text.size());
        for (const QChar unit : text) {
            if (unit == u'\n') {
                length_ = 0;
            } else if (++length_ > longest_ && !unit.isLowSurrogate()) {
                result += u'\n';
                length_ = 1;
            }
            result += unit;
        }
        return result;
    }

private:
    int longest_;
    int length_ = 0;
};

// Returns where this many lines end, or the text does.
qsizetype endOfLines(const QString& text, qsizetype lines) {
    qsizetype end = 0;
    while (lines-- > 0 && end < text.size()) {
        const qsizetype found = text.indexOf(u'\n', end);
        end = found < 0 ? text.size() : found + 1;
    }
    return end;
}

QString lastLines(const QString& text, qsizetype lines) {
    const qsizetype surplus = text.count(u'\n') - lines;
    return surplus > 0 ? text.sliced(endOfLines(text, surplus)) : text;
}

} // namespace

struct LogFollower::Piece {
    QString text{};
    std::uintmax_t skipped = 0;
    bool isEnd = true; ///< for now
};

class LogFollower::Source {
public:
    explicit Source(const std::string& home) : reader_(home) {}

    [[nodiscard]] const std::filesystem::path& path() const { return reader_.path(); }

    Piece next() {
        Piece piece;
        if (std::exchange(isFirst_, false)) {
            piece.skipped = skipToTheEnd();
        }
        std::string bytes = reader_.next();
        piece.isEnd = bytes.empty();
        if (std::exchange(beginsInLine_, false)) {
            const std::size_t end = bytes.find('\n');
            bytes.erase(0, end == std::string::npos ? 0 : end + 1);
        }
        piece.text = lastLines(breaker_(qtText(safe_(bytes))), mostLines);
        return piece;
    }

private:
    std::uintmax_t skipToTheEnd() {
        const std::uintmax_t size = reader_.size();
        if (size <= most) {
            return 0;
        }
        reader_.skipTo(size - most);
        beginsInLine_ = true;
        return size - most;
    }

    LogReader reader_;
    SafeLog safe_{};
    LineBreaker breaker_{longestLine};
    bool isFirst_ = true;
    bool beginsInLine_ = false; ///< whose beginning was left out
};

LogFollower::LogFollower(std::shared_ptr<BackgroundTasks> tasks, const std::string& home,
                         QObject* parent)
    : QObject(parent),
      tasks_(std::move(tasks)),
      source_(std::make_shared<Source>(home)),
      path_(source_->path()) {
    readOn();
}

LogFollower::~LogFollower() = default;

void LogFollower::readOn() {
    tasks_->detached(
        TaskPriority::userInitiated, this, [source = source_] { return source->next(); },
        [this](const Piece& piece) { take(piece); });
}

void LogFollower::take(const Piece& piece) {
    if (piece.skipped > 0) {
        Q_EMIT skipped(piece.skipped);
    }
    if (piece.isEnd) {
        QTimer::singleShot(pauseAtTheEnd, this, &LogFollower::readOn);
    } else {
        waiting_ = piece.text;
        handOut();
    }
}

// Between two pieces, the window handles other events.
void LogFollower::handOut() {
    const qsizetype end = endOfLines(waiting_, linesAtOnce);
    if (end > 0) {
        Q_EMIT read(waiting_.first(end));
        waiting_ = waiting_.sliced(end);
    }
    QTimer::singleShot(0, this, waiting_.isEmpty() ? &LogFollower::readOn : &LogFollower::handOut);
}

} // namespace quorvel
