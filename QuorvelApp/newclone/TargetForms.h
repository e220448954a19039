#pragma once

#include "QuorvelApp/model/NewCloneSession.h"

#include <QWidget>

class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace quorvel {

/// The base of the forms: a heading with a symbol, rows, and a caption below.
class TargetForm : public QWidget {
    Q_OBJECT

public:
    /// Has the symbol of that kind.
    TargetForm(NewCloneSession& session, ShortcutKind kind, const QString& heading,
               QWidget* parent = nullptr);

protected:
    QLineEdit* addField(const QString& placeholder, const QString& accessibleName,
                        QPushButton* button = nullptr);
    void addRow(QWidget* row);
    void addCaption(const QString& text);
    [[nodiscard]] NewCloneSession& session() const { return session_; }

private:
    NewCloneSession& session_;
    QVBoxLayout* column_;
};

/// The address of a web clone.
class WebForm : public TargetForm {
    Q_OBJECT

public:
    explicit WebForm(NewCloneSession& session);

private:
    void refresh();

    QPushButton* ask_;
};

/// The file or folder of a file clone.
class FileForm : public TargetForm {
    Q_OBJECT

public:
    explicit FileForm(NewCloneSession& session);

private:
    void chooseFile();
};

/// The program, arguments and working directory of a command clone.
class CommandForm : public TargetForm {
    Q_OBJECT

public:
    explicit CommandForm(NewCloneSession& session);

private:
    void chooseCommand();
    void chooseWorkdir();
};

} // namespace quorvel
