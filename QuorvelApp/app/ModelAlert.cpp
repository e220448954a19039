#include "QuorvelApp/app/ModelAlert.h"

#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "QuorvelApp/widgets/Sheet.h"

namespace quorvel {

using namespace Qt::StringLiterals;

ModelAlert::ModelAlert(AppModel& model, Text text, QWidget* window)
    : QObject(window),
      model_(model),
      text_(text),
      window_(window) {
    connect(&model_,
            text == Text::error ? &AppModel::lastErrorChanged : &AppModel::statusMessageChanged,
            this, &ModelAlert::refresh);
    refresh();
}

void ModelAlert::refresh() {
    const auto& message = text_ == Text::error ? model_.lastError() : model_.statusMessage();
    if (sheet_) {
        // Closes without clearing the message that replaced its own.
        sheet_->dialog()->disconnect(this);
        sheet_->dialog()->done(QDialog::Accepted);
        sheet_.clear();
    }
    if (message) {
        present(displayText(*message));
    }
}

void ModelAlert::present(const QString& message) {
    const bool error = text_ == Text::error;
    auto* dialog = new MessageSheet(
        error ? u"exclamationmark.triangle.fill"_s : u"checkmark.circle"_s,
        error ? Ink::orange : Ink::accent, error ? tr("Something went wrong") : tr("Done"), message,
        {{.label = tr("OK"), .look = ButtonLook::prominent, .onEscape = true, .isDefault = true}});
    sheet_ = new Sheet(dialog, window_, Sheet::Place::middle);
    connect(dialog, &QDialog::finished, this, &ModelAlert::dismissed);
}

void ModelAlert::dismissed() {
    sheet_.clear();
    if (text_ == Text::error) {
        model_.setLastError(std::nullopt);
    } else {
        model_.setStatusMessage(std::nullopt);
    }
}

} // namespace quorvel
