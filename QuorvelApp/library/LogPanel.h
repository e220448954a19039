#pragma once

#include "QuorvelApp/model/LogFollower.h"

#include <QDialog>

class QLabel;
class QPlainTextEdit;

namespace quorvel {

class AppModel;
struct InstanceRecord;

/// A clone's log, live. Stays at its end unless it was scrolled up.
class LogPanel : public QDialog {
    Q_OBJECT

public:
    static constexpr QSize idealSize{820, 560};
    /// The most lines kept; the oldest are dropped, since a log may be larger than the memory.
    static constexpr int mostLines = LogFollower::mostLines;

    /// `model` must outlive it.
    LogPanel(AppModel& model, const InstanceRecord& clone);

private:
    [[nodiscard]] QWidget* makeButtons(AppModel& model);
    void append(const QString& text);
    void copy() const;

    LogFollower follower_;
    QLabel* note_;
    QPlainTextEdit* text_;
};

} // namespace quorvel
