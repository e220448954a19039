#pragma once

#include "QuorvelApp/model/NewCloneSession.h"

#include <QWidget>

class QLineEdit;
class QPushButton;
class QVBoxLayout;

namespace quorvel {

/// What the three forms have in common: a heading with a symbol, rows, and a caption below.
class TargetForm : public QWidget {
    Q_OBJECT

public:
    TargetForm(NewCloneSession& session, const QString& symbol, const QString& heading,
               QWidget* parent = nullptr);

protected:
    QLineEdit* addField(const QString& placeholder, const QString& accessibleName);
    QLineEdit* addField(const QString& placeholder, const QString& accessibleName,
                        QPushButton* button);
    void addCaption(const QString& text);
    [[nodiscard]] NewCloneSession& session() const { return session_; }

private:
    NewCloneSession& session_;
    QVBoxLayout* column_;
};

class WebForm : public TargetForm {
    Q_OBJECT

public:
    explicit WebForm(NewCloneSession& session);
};

class FileForm : public TargetForm {
    Q_OBJECT

public:
    explicit FileForm(NewCloneSession& session);

private:
    void chooseFile();
};

class CommandForm : public TargetForm {
    Q_OBJECT

public:
    explicit CommandForm(NewCloneSession& session);

private:
    void chooseCommand();
    void chooseWorkdir();
};

} // namespace quorvel
