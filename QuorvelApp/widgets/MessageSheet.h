#pragma once

#include "QuorvelApp/Components.h"

#include <QDialog>
#include <QString>

#include <functional>
#include <vector>

class QBoxLayout;

namespace quorvel {

class WrappingText;

/// A question or a message: a title, a text and a few buttons. Closes when one is clicked. Escape
/// clicks the button marked for it.
class MessageSheet : public QDialog {
    Q_OBJECT

public:
    struct Choice {
        QString label{}; ///< shown as it is, without mnemonics
        ButtonLook look = ButtonLook::standard;
        std::function<void()> chosen{}; ///< may be empty
        bool onEscape = false;
        bool isDefault = false; ///< Return presses it
    };

    MessageSheet(const QString& symbol, Ink ink, const QString& title, const QString& text,
                 const std::vector<Choice>& choices);

    [[nodiscard]] QString title() const;
    [[nodiscard]] QString text() const;

    void reject() override;

protected:
    /// Focuses the default button.
    void showEvent(QShowEvent* event) override;

private:
    void add(const Choice& choice, QBoxLayout* row);

    WrappingText* title_;
    WrappingText* text_;
    QPushButton* escape_ = nullptr;
    QPushButton* default_ = nullptr;
};

} // namespace quorvel
