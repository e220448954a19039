#pragma once

#include <QString>
#include <QWidget>

class QPushButton;

namespace quorvel {

class Spinner;

/// The buttons below a sheet: "Cancel", and the default button for what the sheet is for, which
/// shows that it is at work.
class SheetFooter : public QWidget {
    Q_OBJECT

public:
    /// `action` is the default button's text, `working` its text while it is at work.
    SheetFooter(const QString& action, const QString& working);

    /// Shows whether the action is possible now, and whether it is under way.
    void setState(bool isEnabled, bool isWorking);
    /// Enables or disables "Cancel", which is enabled at first.
    void setCancellable(bool isCancellable);

Q_SIGNALS:
    void cancelled();
    void confirmed();

private:
    void placeSpinner();

    QString action_;
    QString working_;
    QPushButton* cancel_;
    QPushButton* button_;
    Spinner* spinner_;
};

} // namespace quorvel
