#include "QuorvelApp/widgets/ProgressSheet.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/widgets/CopyableLabel.h"

#include <QHBoxLayout>
#include <QProgressBar>
#include <QVBoxLayout>

namespace quorvel {
namespace {

constexpr int textWidth = 380;

} // namespace

ProgressSheet::ProgressSheet(const QString& title, const QString& text)
    : text_(new WrappingText(TextStyle::body, Ink::secondary)),
      bar_(new QProgressBar),
      cancel_(makeButton(tr("Cancel"), ButtonLook::standard)) {
    setWindowTitle(title);
    setAccessibleName(title);
    auto* heading = new WrappingText(TextStyle::headline);
    heading->setFullText(title);
    bar_->setAccessibleName(title);
    bar_->setTextVisible(false);
    bar_->setFixedWidth(textWidth);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cancel_);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(22, 22, 22, 18);
    column->setSpacing(Spacing::block);
    column->addWidget(heading);
    column->addWidget(text_);
    column->addWidget(bar_);
    column->addStretch();
    column->addLayout(buttons);
    connect(cancel_, &QPushButton::clicked, this, &ProgressSheet::cancel);
    setText(text);
    setProgress(0, 0);
}

void ProgressSheet::setText(const QString& text) {
    text_->setFullText(text);
    text_->setVisible(!text.isEmpty());
    setAccessibleDescription(text);
}

void ProgressSheet::setProgress(int done, int total) {
    bar_->setRange(0, total);
    bar_->setValue(done);
}

void ProgressSheet::reject() {
    cancel();
}

void ProgressSheet::cancel() {
    if (cancel_->isEnabled()) {
        cancel_->setEnabled(false);
        cancel_->setText(tr("Cancelling…"));
        Q_EMIT cancelled();
    }
}

} // namespace quorvel
