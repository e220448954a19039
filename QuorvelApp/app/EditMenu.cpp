#include "QuorvelApp/app/EditMenu.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QMimeData>
#include <QPlainTextEdit>

namespace quorvel {
namespace {

// What the commands can do in a widget. Nothing, if it has no text.
struct Editing {
    bool undo = false;
    bool redo = false;
    bool editable = false;
    bool selection = false;
    bool text = false;
};

Editing editingIn(QWidget* widget) {
    if (const auto* line = qobject_cast<QLineEdit*>(widget)) {
        return {.undo = line->isUndoAvailable(),
                .redo = line->isRedoAvailable(),
                .editable = !line->isReadOnly(),
                .selection = line->hasSelectedText(),
                .text = !line->text().isEmpty()};
    }
    if (const auto* editor = qobject_cast<QPlainTextEdit*>(widget)) {
        return {.undo = editor->document()->isUndoAvailable(),
                .redo = editor->document()->isRedoAvailable(),
                .editable = !editor->isReadOnly(),
                .selection = editor->textCursor().hasSelection(),
                .text = !editor->document()->isEmpty()};
    }
    const auto* label = qobject_cast<QLabel*>(widget);
    return {.selection = label != nullptr && label->hasSelectedText()};
}

// Without asking for the text, which another program would have to send.
bool clipboardHasText() {
    const QMimeData* data = QApplication::clipboard()->mimeData();
    return data != nullptr && data->hasText();
}

bool canDo(QKeySequence::StandardKey key, const Editing& editing) {
    switch (key) {
    case QKeySequence::Undo:
        return editing.undo;
    case QKeySequence::Redo:
        return editing.redo;
    case QKeySequence::Cut:
        return editing.editable && editing.selection;
    case QKeySequence::Copy:
        return editing.selection;
    case QKeySequence::Paste:
        return editing.editable && clipboardHasText();
    default:
        return editing.text;
    }
}

void press(QWidget* widget, QKeySequence::StandardKey key) {
    const QList<QKeySequence> bindings = QKeySequence::keyBindings(key);
    if (!bindings.isEmpty()) {
        const QKeyCombination combination = bindings.front()[0];
        QKeyEvent event(QEvent::KeyPress, combination.key(), combination.keyboardModifiers());
        QCoreApplication::sendEvent(widget, &event);
    }
}

} // namespace

EditMenu::EditMenu(QWidget* parent) : QMenu(tr("&Edit"), parent) {
    add(tr("&Undo"), QKeySequence::Undo);
    add(tr("&Redo"), QKeySequence::Redo);
    addSeparator();
    add(tr("Cu&t"), QKeySequence::Cut);
    add(tr("&Copy"), QKeySequence::Copy);
    add(tr("&Paste"), QKeySequence::Paste);
    addSeparator();
    add(tr("Select &All"), QKeySequence::SelectAll);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* focused) { remember(focused); });
    connect(this, &QMenu::aboutToShow, this, &EditMenu::refresh);
    remember(QApplication::focusWidget());
    refresh();
}

void EditMenu::add(const QString& text, QKeySequence::StandardKey key) {
    QAction* action = addAction(text);
    action->setMenuRole(QAction::NoRole);
    action->setShortcut(key);
    connect(action, &QAction::triggered, this, [this, key] {
        if (field_) {
            press(field_, key);
        }
    });
    commands_.push_back({key, action});
}

// A menu bar has the focus while it is used with the keyboard.
void EditMenu::remember(QWidget* focused) {
    if (qobject_cast<QMenuBar*>(focused) == nullptr && qobject_cast<QMenu*>(focused) == nullptr) {
        field_ = focused;
    }
    refresh();
}

void EditMenu::refresh() {
    const Editing editing = editingIn(field_);
    for (const Command& command : commands_) {
        command.action->setEnabled(canDo(command.key, editing));
    }
}

} // namespace quorvel
