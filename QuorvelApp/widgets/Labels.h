#pragma once

#include "QuorvelApp/theme/Symbols.h"

#include <QFrame>
#include <QLabel>

namespace quorvel {

/// Returns a label in one of the text styles, shown as plain text.
[[nodiscard]] QLabel* makeLabel(const QString& text, TextStyle style, Ink ink = Ink::text);

/// Sets a label's font to that of a text style and its color to that of an ink.
void styleLabel(QLabel* label, TextStyle style, Ink ink);

/// Returns a label for one of the interface's own texts, which wraps over as many lines as it
/// needs.
[[nodiscard]] QLabel* makeWrappingLabel(const QString& text, TextStyle style, Ink ink = Ink::text);

/// Returns a hairline.
[[nodiscard]] QFrame* makeDivider(Qt::Orientation orientation);

} // namespace quorvel
