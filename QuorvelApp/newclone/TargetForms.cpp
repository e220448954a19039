#include "QuorvelApp/newclone/TargetForms.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/newclone/FormBindings.h"
#include "QuorvelApp/newclone/KindLook.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace quorvel {

using namespace Qt::StringLiterals;

TargetForm::TargetForm(NewCloneSession& session, ShortcutKind kind, const QString& heading,
                       QWidget* parent)
    : QWidget(parent),
      session_(session),
      column_(new QVBoxLayout(this)) {
    column_->setContentsMargins(20, 20, 20, 20);
    column_->setSpacing(10);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(new SymbolView(KindLook::of(kind).symbol, Ink::text, 17));
    row->addWidget(makeLabel(heading, TextStyle::headline));
    row->addStretch();
    column_->addLayout(row);
}

QLineEdit* TargetForm::addField(const QString& placeholder, const QString& accessibleName,
                                QPushButton* button) {
    auto* field = new QLineEdit;
    field->setPlaceholderText(placeholder);
    field->setAccessibleName(accessibleName);
    auto* row = new QHBoxLayout;
    row->setSpacing(8);
    row->addWidget(field, 1);
    if (button != nullptr) {
        row->addWidget(button);
    }
    column_->addLayout(row);
    return field;
}

void TargetForm::addRow(QWidget* row) {
    column_->addWidget(row);
}

void TargetForm::addCaption(const QString& text) {
    column_->addWidget(makeWrappingLabel(text, TextStyle::caption, Ink::secondary));
    column_->addStretch();
}

WebForm::WebForm(NewCloneSession& session)
    : TargetForm(session, ShortcutKind::web, tr("Website URL")),
      ask_(makeButton(tr("&Get Icon and Title"), ButtonLook::standard)) {
    bindField(session, addField(u"example.com"_s, tr("Website URL"), ask_), &NewCloneForm::webURL,
              &NewCloneForm::autoNameIfNeeded);
    connect(ask_, &QPushButton::clicked, &session, &NewCloneSession::askSite);
    connect(&session, &NewCloneSession::changed, this, &WebForm::refresh);
    refresh();
    addCaption(tr("Opens in its own WebKit window with isolated cookies and logins — no Electron. "
                  "Great for a second WhatsApp, Teams, or Gmail."));
}

void WebForm::refresh() {
    const NewCloneForm& form = session().form();
    ask_->setVisible(session().model().canPreviewSites());
    ask_->setEnabled(form.hasTarget() && !form.askingSite);
    ask_->setText(form.askingSite ? tr("Asking the site…")
                  : form.edited   ? tr("&Get Icon")
                                  : tr("&Get Icon and Title"));
}

FileForm::FileForm(NewCloneSession& session)
    : TargetForm(session, ShortcutKind::file, tr("File or Folder")) {
    QPushButton* browse = makeButton(tr("&Browse…"), ButtonLook::standard);
    bindField(session, addField(tr("No item selected"), tr("File or Folder"), browse),
              &NewCloneForm::filePath);
    connect(browse, &QPushButton::clicked, this, &FileForm::chooseFile);
    addCaption(tr("Creates a Dock item that opens this file or folder with its default app."));
}

void FileForm::chooseFile() {
    session().choose(session().panels().fileOrFolder, window(),
                     [](NewCloneForm& form, const auto& chosen) { form.chooseFile(chosen); });
}

CommandForm::CommandForm(NewCloneSession& session)
    : TargetForm(session, ShortcutKind::command, tr("Command")) {
    QPushButton* command = makeButton(tr("C&hoose…"), ButtonLook::standard);
    QPushButton* folder = makeButton(tr("Ch&oose…"), ButtonLook::standard);
    folder->setAccessibleName(tr("Choose the working directory…"));
    bindField(session, addField(u"/usr/bin/…"_s, tr("Command"), command),
              &NewCloneForm::commandPathText, &NewCloneForm::autoNameIfNeeded);
    bindField(session, addField(tr("Arguments (space-separated)"), tr("Arguments")),
              &NewCloneForm::commandArgsText);
    bindField(session,
              addField(tr("Working directory (optional)"), tr("Working directory"), folder),
              &NewCloneForm::workdir);
    connect(command, &QPushButton::clicked, this, &CommandForm::chooseCommand);
    connect(folder, &QPushButton::clicked, this, &CommandForm::chooseWorkdir);
    const QString caption =
        tr("Runs any executable/script with arguments, a working directory, and the "
           "environment variables below.");
    addCaption(session.form().edited
                   ? caption + u' ' + tr("Put an argument with spaces in double quotes.")
                   : caption);
}

void CommandForm::chooseCommand() {
    session().choose(session().panels().file, window(),
                     [](NewCloneForm& form, const auto& chosen) { form.chooseCommand(chosen); });
}

void CommandForm::chooseWorkdir() {
    session().choose(
        session().panels().folder, window(),
        [](NewCloneForm& form, const auto& chosen) { form.workdir = chosen.string(); });
}

} // namespace quorvel
