#include "QuorvelApp/widgets/MessageSheet.h"

#include "QuorvelApp/widgets/CopyableLabel.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

#include <algorithm>

namespace quorvel {
namespace {

constexpr int textWidth = 400;
constexpr int leastHeight = 40;
constexpr int greatestHeight = 300;

// As high as its texts; if that is too high for the window, it can be scrolled, also by keyboard.
class MessageText final : public QScrollArea {
public:
    explicit MessageText(const std::vector<QWidget*>& texts) {
        auto* page = new QWidget;
        auto* column = new QVBoxLayout(page);
        column->setContentsMargins(0, 0, 0, 0);
        column->setSpacing(Spacing::normal);
        for (QWidget* text : texts) {
            column->addWidget(text);
        }
        column->addStretch();
        setWidget(page);
        setWidgetResizable(true);
        setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        setFixedWidth(textWidth);
        setFocusPolicy(neededHeight() > greatestHeight ? Qt::StrongFocus : Qt::NoFocus);
    }

    [[nodiscard]] QSize sizeHint() const override {
        return {textWidth, std::min(neededHeight(), greatestHeight)};
    }

    [[nodiscard]] QSize minimumSizeHint() const override {
        return {textWidth, std::min(neededHeight(), leastHeight)};
    }

private:
    [[nodiscard]] int neededHeight() const { return widget()->heightForWidth(textWidth); }
};

} // namespace

MessageSheet::MessageSheet(const QString& symbol, Ink ink, const QString& title,
                           const QString& text, const std::vector<Choice>& choices)
    : title_(new WrappingText(TextStyle::headline)),
      text_(new WrappingText(TextStyle::body, Ink::secondary)) {
    setWindowTitle(title);
    setAccessibleName(title);
    setAccessibleDescription(text);
    title_->setFullText(title);
    text_->setFullText(text);
    auto* message = new MessageText({title_, text_});
    message->setAccessibleName(title);
    auto* top = new QHBoxLayout;
    top->setSpacing(Spacing::wide);
    top->addWidget(new SymbolView(symbol, ink, 32), 0, Qt::AlignTop);
    top->addWidget(message, 1);
    auto* row = new QHBoxLayout;
    row->setSpacing(Spacing::normal);
    row->addStretch();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(22, 22, 22, 18);
    column->setSpacing(Spacing::pane);
    column->addLayout(top, 1);
    column->addLayout(row);
    for (const Choice& choice : choices) {
        add(choice, row);
    }
}

void MessageSheet::add(const Choice& choice, QBoxLayout* row) {
    QPushButton* button = makeButton(withoutMnemonics(choice.label), choice.look);
    connect(button, &QPushButton::clicked, this, [this, chosen = choice.chosen] {
        // Closes first: the choice may bring up the next message.
        accept();
        if (chosen) {
            chosen();
        }
    });
    if (choice.onEscape) {
        escape_ = button;
    }
    if (choice.isDefault) {
        makeDefault(button);
        default_ = button;
    }
    row->addWidget(button);
}

QString MessageSheet::title() const {
    return title_->fullText();
}

QString MessageSheet::text() const {
    return text_->fullText();
}

// Not earlier, since reparenting takes away the focus.
void MessageSheet::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (default_ != nullptr) {
        default_->setFocus();
    }
}

void MessageSheet::reject() {
    if (escape_ != nullptr) {
        escape_->click();
    }
}

} // namespace quorvel
