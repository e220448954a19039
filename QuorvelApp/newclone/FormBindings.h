#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/model/QtText.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>

#include <string>

/// Binds the controls of the new-clone sheet to the fields of its form, in both directions.
/// Controls and session belong to the same sheet.
namespace quorvel {

using FormAction = void (NewCloneForm::*)();

/// Makes a field read-only if the form edits a clone.
inline void fixIfEdited(NewCloneSession& session, QLineEdit* control) {
    control->setReadOnly(session.form().edited.has_value());
}

/// Binds a line of text to a field. `edited`, if not null, is called after each edit by the user.
inline void bindField(NewCloneSession& session, QLineEdit* control,
                      std::string NewCloneForm::*field, FormAction edited = nullptr) {
    const auto show = [&session, control, field] {
        const QString text = qtText(session.form().*field);
        // Setting the text would move the cursor while the user types.
        const bool isCut = text.size() > control->maxLength();
        if (control->text() != text && !(isCut && control->isReadOnly())) {
            const QSignalBlocker quiet(control);
            control->setText(text);
            control->setReadOnly(isCut || control->isReadOnly()); // or the rest would be lost
        }
    };
    QObject::connect(control, &QLineEdit::textChanged, &session,
                     [&session, field, edited](const QString& text) {
                         session.edit([&](NewCloneForm& form) {
                             form.*field = text.toStdString();
                             if (edited != nullptr) {
                                 (form.*edited)();
                             }
                         });
                     });
    QObject::connect(&session, &NewCloneSession::changed, control, show);
    show();
}

/// Returns the editor's text as typed; `toPlainText` would replace non-breaking spaces.
inline QString typedText(const QPlainTextEdit* control) {
    return control->document()
        ->toRawText()
        .replace(QChar::ParagraphSeparator, u'\n')
        .replace(QChar::LineSeparator, u'\n');
}

/// Binds a text editor to a field.
inline void bindField(NewCloneSession& session, QPlainTextEdit* control,
                      std::string NewCloneForm::*field) {
    const auto show = [&session, control, field] {
        const QString text = qtText(session.form().*field);
        if (typedText(control) != text) {
            const QSignalBlocker quiet(control);
            control->setPlainText(text);
        }
    };
    QObject::connect(control, &QPlainTextEdit::textChanged, &session, [&session, control, field] {
        session.edit([&](NewCloneForm& form) { form.*field = typedText(control).toStdString(); });
    });
    QObject::connect(&session, &NewCloneSession::changed, control, show);
    show();
}

/// Binds a check box to a field. The box is checked if the field equals `whenChecked`.
inline void bindField(NewCloneSession& session, QCheckBox* control, bool NewCloneForm::*field,
                      bool whenChecked = true) {
    const auto show = [&session, control, field, whenChecked] {
        const QSignalBlocker quiet(control);
        control->setChecked(session.form().*field == whenChecked);
    };
    QObject::connect(
        control, &QCheckBox::toggled, &session, [&session, field, whenChecked](bool checked) {
            session.edit([&](NewCloneForm& form) { form.*field = checked == whenChecked; });
        });
    QObject::connect(&session, &NewCloneSession::changed, control, show);
    show();
}

} // namespace quorvel
