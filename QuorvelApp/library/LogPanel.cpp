#include "QuorvelApp/library/LogPanel.h"

#include "LaunchKit/InstanceRecord.h"
#include "Presentation/SizeText.h"
#include "QuorvelApp/AppModel.h"
#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/widgets/CopyableLabel.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QTextBlock>
#include <QTextDocumentFragment>
#include <QVBoxLayout>

namespace quorvel {

using namespace Qt::StringLiterals;

LogPanel::LogPanel(AppModel& model, const InstanceRecord& clone)
    : follower_(model.services().tasks, clone.config.resolvedHome()),
      note_(makeWrappingLabel({}, TextStyle::caption, Ink::secondary)),
      text_(new QPlainTextEdit) {
    const QString title = tr("Log of “%1”").arg(displayLine(clone.config.displayName));
    setWindowTitle(title);
    setAccessibleName(title);
    auto* heading = new ElidedLabel(TextStyle::headline, Ink::text);
    heading->setFullText(title);
    auto* path = new ElidedLabel(TextStyle::caption, Ink::secondary, Qt::ElideMiddle);
    path->setFullText(displayLine(follower_.path().string()));
    text_->setObjectName(u"log"_s);
    text_->setAccessibleName(tr("Log"));
    text_->setReadOnly(true);
    text_->setUndoRedoEnabled(false);
    text_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    text_->setTabChangesFocus(true);
    text_->setFont(monospacedFont());
    text_->setMaximumBlockCount(mostLines);
    text_->setPlaceholderText(tr("There is no log yet. What the clone prints appears here."));
    text_->setFocus(); // for the keys that scroll
    note_->hide();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(22, 18, 22, 18);
    column->setSpacing(Spacing::tight);
    column->addWidget(heading);
    column->addWidget(path);
    column->addWidget(note_);
    column->addSpacing(Spacing::tight);
    column->addWidget(text_, 1);
    column->addSpacing(Spacing::normal);
    column->addWidget(makeButtons(model));
    connect(&follower_, &LogFollower::read, this, &LogPanel::append);
    connect(&follower_, &LogFollower::skipped, this, [this](std::uintmax_t bytes) {
        note_->setText(tr("The first %1 are left out.").arg(qtText(sizeText(bytes))));
        note_->show();
    });
}

QWidget* LogPanel::makeButtons(AppModel& model) {
    auto* buttons = new QWidget;
    auto* copyAll = makeButton(tr("Cop&y"), ButtonLook::standard);
    auto* reveal = makeButton(tr("Reveal in Finder"), ButtonLook::standard, u"folder"_s);
    auto* close = makeButton(tr("Close"), ButtonLook::prominent);
    connect(copyAll, &QPushButton::clicked, this, &LogPanel::copy);
    connect(reveal, &QPushButton::clicked, this,
            [this, &model] { model.revealItem(follower_.path()); });
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    makeDefault(close);
    auto* row = new QHBoxLayout(buttons);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Spacing::normal);
    row->addWidget(copyAll);
    row->addWidget(reveal);
    row->addStretch();
    row->addWidget(close);
    return buttons;
}

void LogPanel::append(const QString& text) {
    if (text_->blockCount() + text.count(u'\n') > mostLines) {
        note_->setText(tr("The oldest lines are left out."));
        note_->show();
    }
    QScrollBar* bar = text_->verticalScrollBar();
    const bool atEnd = bar->value() == bar->maximum();
    // Stays with its line even if lines before it go.
    const QTextCursor top = text_->cursorForPosition({0, 0});
    QTextCursor end(text_->document());
    end.movePosition(QTextCursor::End);
    end.insertText(text);
    bar->setValue(atEnd ? bar->maximum() : top.block().firstLineNumber());
}

void LogPanel::copy() const {
    const QTextCursor selected = text_->textCursor();
    QApplication::clipboard()->setText(selected.hasSelection() ? selected.selection().toPlainText()
                                                               : text_->toPlainText());
}

} // namespace quorvel
