#pragma once

#include "QuorvelApp/newclone/AppPicker.h"
#include "QuorvelApp/newclone/ConfigurationPane.h"

#include <QAbstractItemView>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStringList>
#include <QWidget>

namespace quorvel::testing {

/// The topmost visible button with that text, mnemonics apart; throws if there is none.
[[nodiscard]] QPushButton* visibleButton(QWidget* root, const QString& text);

/// The field with that accessible name; throws if there is none.
[[nodiscard]] QLineEdit* fieldNamed(QWidget* root, const QString& name);

/// The check box with that accessible name or text; throws if there is none.
[[nodiscard]] QCheckBox* checkBox(QWidget* root, const QString& name);

/// Chooses the app of that name in the grid of the new-clone sheet; throws if there is none.
void chooseApp(QWidget* root, const QString& name);

/// The plain text of the tooltip that `view` shows for what is at that place of its viewport.
[[nodiscard]] QString tooltipAt(QAbstractItemView* view, QPoint place);

/// All that the user can see, hear or hover over in the visible widgets.
[[nodiscard]] QStringList shownTexts(const QWidget* root);

/// Whether a label with exactly that text shows.
[[nodiscard]] bool shows(QWidget* root, const QString& text);

} // namespace quorvel::testing
