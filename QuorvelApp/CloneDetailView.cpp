#include "QuorvelApp/CloneDetailView.h"

#include "LaunchKit/Homes/HomeLock.h"
#include "LaunchKit/InstanceLauncher.h"
#include "LaunchKit/InstanceRecord.h"
#include "Presentation/DeletionWarning.h"
#include "QuorvelApp/library/MigrationCallout.h"
#include "QuorvelApp/model/CloneListModel.h"
#include "QuorvelApp/model/Continuation.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/model/Translated.h"
#include "QuorvelApp/widgets/CopyableLabel.h"
#include "QuorvelApp/widgets/MessageSheet.h"
#include "QuorvelApp/widgets/Sheet.h"

#include <QHBoxLayout>
#include <QScrollArea>
#include <QVBoxLayout>

namespace quorvel {
namespace {

using namespace Qt::StringLiterals;

// As high as its content, regardless of the window's height.
QWidget* makeBand() {
    auto* band = new QWidget;
    band->setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    return band;
}

} // namespace

CloneDetailView::CloneDetailView(AppModel& model, IconLoader& icons, QWidget* sheets,
                                 QWidget* parent)
    : QWidget(parent),
      model_(model),
      sheets_(sheets),
      clone_(std::make_unique<InstanceRecord>()),
      callout_(new MigrationCallout) {
    setObjectName(u"detail"_s);
    setAttribute(Qt::WA_StyledBackground);
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(28, 26, 28, 26);
    column->setSpacing(Spacing::section);
    column->addWidget(makeHeader(icons));
    column->addWidget(makeActions());
    column->addWidget(callout_);
    column->addSpacing(Spacing::hair);
    column->addWidget(makeLabel(tr("Details"), TextStyle::headline));
    details_ = new QVBoxLayout;
    details_->setSpacing(0);
    column->addLayout(details_);
    column->addStretch();

    auto* scroll = new QScrollArea;
    scroll->setWidget(page);
    scroll->setWidgetResizable(true);
    scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    scroll->setFocusPolicy(Qt::NoFocus);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(scroll);
    connect(callout_, &MigrationCallout::migrationRequested, this,
            &CloneDetailView::confirmMigration);
    connect(&model_, &AppModel::runningBundleIdsChanged, this, &CloneDetailView::refreshRunning);
}

CloneDetailView::~CloneDetailView() = default;

QWidget* CloneDetailView::makeHeader(IconLoader& icons) {
    auto* header = makeBand();
    icon_ = new AppIcon(icons, 64);
    name_ = new ElidedLabel(TextStyle::largeTitle, Ink::text);
    dot_ = new StatusDot;
    status_ = makeLabel({}, TextStyle::callout, Ink::secondary);
    auto* state = new QHBoxLayout;
    state->setSpacing(7);
    state->addWidget(dot_);
    state->addWidget(status_);
    state->addStretch();
    auto* texts = new QVBoxLayout;
    texts->setSpacing(3);
    texts->addStretch();
    texts->addWidget(name_);
    texts->addLayout(state);
    texts->addStretch();
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Spacing::wide);
    row->addWidget(icon_);
    row->addLayout(texts, 1);
    return header;
}

QWidget* CloneDetailView::makeActions() {
    actions_ = makeBand();
    launch_ = makeButton(tr("&Launch"), ButtonLook::prominent, u"play.fill"_s);
    auto* reveal = makeButton(tr("&Reveal in Finder"), ButtonLook::standard, u"folder"_s);
    auto* remove = makeButton(tr("&Delete"), ButtonLook::standard, u"trash"_s);
    connect(launch_, &QPushButton::clicked, this, &CloneDetailView::launch);
    connect(reveal, &QPushButton::clicked, this, [this] { model_.reveal(*clone_); });
    connect(remove, &QPushButton::clicked, this, &CloneDetailView::confirmDelete);
    auto* row = new QHBoxLayout(actions_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Spacing::normal);
    row->addWidget(launch_);
    row->addWidget(reveal);
    row->addStretch();
    row->addWidget(remove);
    return actions_;
}

void CloneDetailView::setClone(const InstanceRecord& clone) {
    if (clone.bundleURL != clone_->bundleURL) {
        grouping_ = WindowGrouping::own; // until it is known
    }
    *clone_ = clone;
    icon_->setPath(iconPathOf(clone));
    name_->setFullText(displayLine(clone.config.displayName));
    setRows(cloneDetails(clone, translated, grouping_));
    refreshRunning();
    continued(model_.windowGrouping(clone), this,
              [this, wrapper = clone.bundleURL](WindowGrouping grouping) {
                  if (wrapper == clone_->bundleURL) {
                      grouping_ = grouping;
                      setRows(cloneDetails(*clone_, translated, grouping_));
                  }
              });
}

void CloneDetailView::setActivity(const Activity& activity) {
    activity_ = activity;
    setActionsEnabled(!activity.isChanging);
    refreshRunning();
}

// A disabled button loses the focus, and gets it back unless another widget has it then.
void CloneDetailView::setActionsEnabled(bool enabled) {
    callout_->setEnabled(enabled);
    if (enabled == actions_->isEnabled()) {
        return;
    }
    QWidget* const focused = window()->focusWidget();
    if (!enabled) {
        focusBefore_ = actions_->isAncestorOf(focused) ? focused : nullptr;
    }
    actions_->setEnabled(enabled);
    if (enabled && focusBefore_ && focused == nullptr) {
        focusBefore_->setFocus();
    }
}

void CloneDetailView::launch() {
    model_.launch(*clone_);
    showCallout();
}

// Also after a launch, which links empty folders: there may be nothing to migrate any more.
void CloneDetailView::showCallout() {
    callout_->setVisible(
        InstanceLauncher::needsSharedFolderMigration(clone_->config.resolvedHome()));
}

void CloneDetailView::refreshRunning() {
    showCallout();
    const bool running = model_.isRunning(*clone_);
    dot_->setRunning(running);
    status_->setText(activity_.isStopping ? tr("Stopping…")
                     : running            ? tr("Running")
                                          : tr("Not running"));
    launch_->setText(running ? tr("Foc&us") : tr("&Launch"));
}

void CloneDetailView::setRows(const std::vector<Fact>& rows) {
    if (rows == rows_) {
        return;
    }
    rows_ = rows;
    while (QLayoutItem* item = details_->takeAt(0)) {
        delete item->widget();
        delete item;
    }
    for (std::size_t index = 0; index < rows.size(); ++index) {
        if (index > 0) {
            details_->addWidget(makeDivider(Qt::Horizontal));
        }
        details_->addWidget(new InfoRow(rows[index]));
    }
}

void CloneDetailView::confirmDelete() {
    const QString name = displayLine(clone_->config.displayName);
    auto* question = new MessageSheet(
        u"trash"_s, Ink::danger, tr("Delete “%1”?").arg(name),
        tr("“Delete Clone Only” removes the app but keeps its data at %1. “…and Its Data” also "
           "erases that folder — accounts and settings for this clone are gone for good.")
            .arg(displayLine(clone_->config.instanceHome)),
        {{.label = tr("Delete Clone Only"),
          .look = ButtonLook::destructive,
          .chosen = [this, clone = *clone_] { removeWithoutData(clone); }},
         {.label = tr("Delete Clone and Its Data"),
          .look = ButtonLook::destructive,
          .chosen = [this, clone = *clone_] { removeWithData(clone); }},
         {.label = tr("Cancel"), .onEscape = true, .isDefault = true}});
    new Sheet(question, sheets_, Sheet::Place::middle);
}

bool CloneDetailView::isRunningNow(const InstanceRecord& clone) {
    model_.refreshRunningState();
    return model_.isRunning(clone) || isHomeInUse(clone.config);
}

void CloneDetailView::removeWithoutData(const InstanceRecord& clone) {
    const bool runs = isRunningNow(clone);
    const bool isDeleted = model_.remove(clone, false);
    if (runs && isDeleted) {
        const DeletionWarning note =
            deletionWarning(displayLine(clone.config.displayName).toStdString(), false, translated);
        model_.setStatusMessage(note.title + ". " + note.text);
    }
}

void CloneDetailView::removeWithData(const InstanceRecord& clone) {
    if (!isRunningNow(clone)) {
        model_.remove(clone, true);
        return;
    }
    const DeletionWarning warning =
        deletionWarning(displayLine(clone.config.displayName).toStdString(), true, translated);
    auto* question =
        new MessageSheet(u"exclamationmark.triangle.fill"_s, Ink::orange, qtText(warning.title),
                         tr("Quit it before you delete its data.") + u' ' + qtText(warning.text),
                         {{.label = tr("Delete Anyway"),
                           .look = ButtonLook::destructive,
                           .chosen = [this, clone] { model_.remove(clone, true); }},
                          {.label = tr("Cancel"), .onEscape = true, .isDefault = true}});
    new Sheet(question, sheets_, Sheet::Place::middle);
}

void CloneDetailView::confirmMigration() {
    const QString name = displayLine(clone_->config.displayName);
    auto* question = new MessageSheet(
        u"arrow.down.doc"_s, Ink::accent, tr("Move “%1” files to your shared folders?").arg(name),
        tr("Files in this clone's Downloads, Documents and Desktop move into your Mac's real "
           "folders — nothing is overwritten (a name clash gets a number). Future saves go there "
           "too, while the clone's accounts and settings stay isolated. Quit the clone first if "
           "it's running."),
        {{.label = tr("Move Files & Share"),
          .look = ButtonLook::prominent,
          .chosen = [this, clone = *clone_] { model_.migrateSharedFolders(clone); },
          .isDefault = true},
         {.label = tr("Cancel"), .onEscape = true}});
    new Sheet(question, sheets_, Sheet::Place::middle);
}

} // namespace quorvel
