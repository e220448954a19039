#pragma once

#include "QuorvelApp/AppModel.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace quorvel {

class Sheet;

/// Shows one of the model's two messages while it is set, and clears it when dismissed.
class ModelAlert : public QObject {
    Q_OBJECT

public:
    enum class Text { error, status };

    /// Shows over `window`, which owns the alert. `model` must outlive it.
    ModelAlert(AppModel& model, Text text, QWidget* window);

private:
    void refresh();
    void present(const QString& message);
    void dismissed();

    AppModel& model_;
    Text text_;
    QWidget* window_;
    QPointer<Sheet> sheet_{};
};

} // namespace quorvel
