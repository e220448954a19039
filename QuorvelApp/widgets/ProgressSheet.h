#pragma once

#include <QDialog>
#include <QString>

class QLabel;
class QProgressBar;
class QPushButton;

namespace quorvel {

class WrappingText;

/// A dialog that shows the progress of something that takes time, with a button that cancels it.
/// Escape presses the button. Does not close by itself, since cancelling may take time, too: `done`
/// closes it.
class ProgressSheet : public QDialog {
    Q_OBJECT

public:
    /// `text` says below the title what is being done; it may change.
    explicit ProgressSheet(const QString& title, const QString& text = {});

    /// Replaces what is said below the title.
    void setText(const QString& text);
    /// Shows that `done` parts of `total` are done; a total of 0 means that it is unknown.
    void setProgress(int done, int total);

    void reject() override;

Q_SIGNALS:
    /// Emitted at most once.
    void cancelled();

private:
    void cancel();

    WrappingText* text_;
    QProgressBar* bar_;
    QPushButton* cancel_;
};

} // namespace quorvel
