#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/model/QtText.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QSignalBlocker>

#include <string>

/// Ties a control to a field of the form, both ways. `edited` runs after each change by hand.
namespace quorvel {

using FormAction = void (NewCloneForm::*)();

inline void bindField(NewCloneSession& session, QLineEdit* control,
                      std::string NewCloneForm::*field, FormAction edited = nullptr) {
    const auto show = [&session, control, field] {
        const QString text = qtText(session.form().*field);
        // The cursor stays where it is while a person types.
        if (control->text() != text) {
            const QSignalBlocker quiet(control);
            control->setText(text);
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

/// What the editor holds as it was typed; `toPlainText` would give other spaces for some.
inline QString typedText(const QPlainTextEdit* control) {
    return control->document()
        ->toRawText()
        .replace(QChar::ParagraphSeparator, u'\n')
        .replace(QChar::LineSeparator, u'\n');
}

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

/// A box that is checked when the field is `whenChecked`.
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
