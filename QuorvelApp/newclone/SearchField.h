#pragma once

#include "QuorvelApp/model/NewCloneSession.h"

#include <QFrame>

class QLineEdit;

namespace quorvel {

/// The text field that filters the app picker.
class SearchField : public QFrame {
    Q_OBJECT

public:
    explicit SearchField(NewCloneSession& session);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QLineEdit* text_;
};

} // namespace quorvel
