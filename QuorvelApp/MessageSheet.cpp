#include "QuorvelApp/MessageSheet.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

namespace quorvel {
namespace {

constexpr int textWidth = 400;

} // namespace

MessageSheet::MessageSheet(const QString& symbol, Ink ink, const QString& title,
                           const QString& text, const std::vector<Choice>& choices)
    : title_(makeWrappingLabel(title, TextStyle::headline)),
      text_(makeWrappingLabel(text, TextStyle::body, Ink::secondary)) {
    setWindowTitle(title);
    setAccessibleName(title);
    setAccessibleDescription(text);
    title_->setFixedWidth(textWidth);
    text_->setFixedWidth(textWidth);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse);

    auto* words = new QVBoxLayout;
    words->setSpacing(8);
    words->addWidget(title_);
    words->addWidget(text_);
    words->addStretch();
    auto* top = new QHBoxLayout;
    top->setSpacing(16);
    top->addWidget(new SymbolView(symbol, ink, 32), 0, Qt::AlignTop);
    top->addLayout(words, 1);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addStretch();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(22, 22, 22, 18);
    column->setSpacing(20);
    column->addLayout(top, 1);
    column->addLayout(row);
    for (const Choice& choice : choices) {
        add(choice, row);
    }
}

void MessageSheet::add(const Choice& choice, QBoxLayout* row) {
    QPushButton* button = makeButton(withoutMnemonics(choice.label), choice.look);
    connect(button, &QPushButton::clicked, this, [this, chosen = choice.chosen] {
        // Ends first: what was chosen may bring up the next message.
        accept();
        if (chosen) {
            chosen();
        }
    });
    if (choice.onEscape) {
        escape_ = button;
    }
    if (choice.isDefault) {
        button->setDefault(true);
        button->setFocus();
    }
    row->addWidget(button);
}

QString MessageSheet::title() const {
    return title_->text();
}

QString MessageSheet::text() const {
    return text_->text();
}

void MessageSheet::reject() {
    if (escape_ != nullptr) {
        escape_->click();
    }
}

} // namespace quorvel
