#include "QuorvelApp/widgets/SheetFooter.h"

#include "QuorvelApp/Components.h"

#include <QHBoxLayout>
#include <QStyle>

#include <algorithm>

namespace quorvel {

SheetFooter::SheetFooter(const QString& action, const QString& working)
    : action_(action),
      working_(working),
      cancel_(makeButton(tr("Cancel"), ButtonLook::standard)),
      button_(makeButton(working, ButtonLook::prominent)),
      spinner_(new Spinner(14, Ink::secondary, button_)) {
    connect(cancel_, &QPushButton::clicked, this, &SheetFooter::cancelled);
    makeDefault(button_);
    connect(button_, &QPushButton::clicked, this, &SheetFooter::confirmed);
    // For either of its texts, the longer one with the spinner before it.
    const int widest =
        button_->fontMetrics().horizontalAdvance(working) + 2 * (spinner_->width() + 6);
    button_->setText(action);
    const QSize plain = button_->sizeHint();
    button_->setFixedSize(std::max(plain.width(), widest + 12), plain.height());
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(20, 14, 20, 14);
    row->setSpacing(8);
    row->addStretch();
    row->addWidget(cancel_);
    row->addWidget(button_);
}

void SheetFooter::setState(bool isEnabled, bool isWorking) {
    button_->setText(isWorking ? working_ : action_);
    button_->setEnabled(isEnabled);
    spinner_->setVisible(isWorking);
    placeSpinner();
}

void SheetFooter::setCancellable(bool isCancellable) {
    cancel_->setEnabled(isCancellable);
}

// Places it beside the text, which is centered in the button.
void SheetFooter::placeSpinner() {
    const QRect all = button_->rect();
    const int text = button_->fontMetrics().horizontalAdvance(button_->text());
    const int left = (all.width() - text) / 2 - spinner_->width() - 6;
    const QRect place(QPoint(left, (all.height() - spinner_->height()) / 2), spinner_->size());
    spinner_->move(QStyle::visualRect(layoutDirection(), all, place).topLeft());
}

} // namespace quorvel
