#include "QuorvelApp/newclone/ConfigurationPane.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/newclone/AdvancedOptions.h"
#include "QuorvelApp/newclone/ConfigurationHeader.h"
#include "QuorvelApp/newclone/FormBindings.h"
#include "QuorvelApp/newclone/KindLook.h"
#include "QuorvelApp/newclone/StrategySection.h"
#include "QuorvelApp/widgets/CopyableLabel.h"
#include "QuorvelApp/widgets/DisclosureGroup.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

QFrame* makeWarning(WrappingText* text) {
    auto* frame = new QFrame;
    frame->setObjectName(u"warning"_s);
    auto* row = new QHBoxLayout(frame);
    row->setContentsMargins(11, 10, 10, 10);
    row->setSpacing(9);
    row->addWidget(new SymbolView(u"exclamationmark.triangle.fill"_s, Ink::orange, 16), 0,
                   Qt::AlignTop);
    row->addWidget(text, 1);
    return frame;
}

} // namespace

ConfigurationPane::ConfigurationPane(NewCloneSession& session, IconLoader& icons, QWidget* parent)
    : QWidget(parent),
      session_(session),
      states_(new QStackedLayout) {
    setFixedWidth(paneWidth);
    auto* padding = new QVBoxLayout(this);
    padding->setContentsMargins(8, 8, 0, 8);
    padding->addLayout(states_);
    // Only now: the first page is shown at once, and would be a top-level window.
    states_->addWidget(makePrompt());
    states_->addWidget(makeSettings(icons));
    connect(&session_, &NewCloneSession::changed, this, &ConfigurationPane::refresh);
    connect(&session_.model(), &AppModel::clonesChanged, this, &ConfigurationPane::refresh);
    refresh();
}

QWidget* ConfigurationPane::makePrompt() {
    auto* page = new QWidget;
    promptSymbol_ = new SymbolView({}, Ink::tertiary, 36);
    promptText_ = makeLabel({}, TextStyle::body, Ink::secondary);
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(0, 0, 8, 0);
    column->setSpacing(14);
    column->addStretch();
    column->addWidget(promptSymbol_, 0, Qt::AlignHCenter);
    column->addWidget(promptText_, 0, Qt::AlignHCenter);
    column->addStretch();
    return page;
}

// The large parts get their final parents at once, since reparenting restyles all that is in them.
QWidget* ConfigurationPane::makeSettings(IconLoader& icons) {
    auto* scroll = new QScrollArea(this);
    auto* page = new QWidget(scroll->viewport());
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(6, 6, 14, 6);
    column->setSpacing(14);
    auto* sandboxed = new WrappingText(TextStyle::caption);
    sandboxed->setFullText(
        tr("This app is sandboxed. macOS won't let Quorvel give it a separate data container, "
           "so both copies will share the same account and settings. You'll get a separate "
           "Dock icon, but not isolated data."));
    warning_ = makeWarning(sandboxed);
    strategy_ = new StrategySection(session_);
    column->addWidget(new ConfigurationHeader(session_, icons));
    column->addWidget(warning_);
    column->addWidget(makeNameSection());
    column->addWidget(strategy_);
    auto* advanced = new DisclosureGroup(tr("&Advanced options"), page);
    advanced->setContent(new AdvancedOptions(session_, icons, advanced));
    connect(advanced, &DisclosureGroup::toggled, this, [this](bool expanded) {
        session_.edit([&](NewCloneForm& form) { form.showAdvanced = expanded; });
    });
    column->addWidget(advanced);
    if (!session_.form().edited) {
        auto* launch = new QCheckBox(tr("La&unch after creating"));
        bindField(session_, launch, &NewCloneForm::launchAfter);
        column->addWidget(launch);
    }
    column->addStretch();
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    return scroll;
}

QWidget* ConfigurationPane::makeNameSection() {
    auto* section = new QWidget;
    auto* label = makeLabel(tr("Name"), TextStyle::captionMedium);
    auto* field = new QLineEdit;
    field->setPlaceholderText(tr("Name"));
    field->setAccessibleName(tr("Name"));
    label->setBuddy(field);
    fixIfEdited(session_, field);
    bindField(session_, field, &NewCloneForm::cloneName, &NewCloneForm::nameEdited);
    savedTo_ = new WrappingText(TextStyle::caption, Ink::secondary);
    auto* column = new QVBoxLayout(section);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    column->addWidget(label);
    column->addWidget(field);
    column->addWidget(savedTo_);
    replacedText_ = new WrappingText(TextStyle::caption);
    replaced_ = makeWarning(replacedText_);
    column->addWidget(replaced_);
    return section;
}

void ConfigurationPane::refresh() {
    const NewCloneForm& form = session_.form();
    const bool isApp = form.shortcutType == ShortcutKind::app;
    const KindLook look = KindLook::of(form.shortcutType);
    promptSymbol_->setSymbol(look.promptSymbol);
    promptText_->setText(look.prompt);
    warning_->setVisible(isApp && form.selectedSandboxed);
    strategy_->setVisible(isApp && form.selected.has_value());
    savedTo_->setFullText(displayLine(form.savedToText()));
    const std::string replaced = form.replacementText(session_.model().clones());
    replacedText_->setFullText(displayLine(replaced));
    replaced_->setVisible(!replaced.empty() && !form.creating);
    states_->setCurrentIndex(form.hasTarget() ? 1 : 0);
}

} // namespace quorvel
