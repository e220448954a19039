#pragma once

#include <QPushButton>
#include <QString>

namespace quorvel {

/// How a button is drawn.
enum class ButtonLook { standard, small, prominent, destructive, tool };

/// Returns a button; "&" in `text` marks its mnemonic, `symbol` may be empty. Return presses it
/// while it has the focus.
[[nodiscard]] QPushButton* makeButton(const QString& text, ButtonLook look,
                                      const QString& symbol = {});

/// Makes `button` its dialog's default: Return presses it unless the focused control uses Return.
void makeDefault(QPushButton* button);

/// Returns `text` for a button, menu or check box in which nothing is a mnemonic.
[[nodiscard]] QString withoutMnemonics(QString text);

} // namespace quorvel
