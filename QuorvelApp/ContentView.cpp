#include "QuorvelApp/ContentView.h"

#include "LaunchKit/InstanceRecord.h"
#include "QuorvelApp/CloneDetailView.h"
#include "QuorvelApp/Components.h"
#include "QuorvelApp/NewCloneView.h"
#include "QuorvelApp/app/ModelAlert.h"
#include "QuorvelApp/library/CloneCommands.h"
#include "QuorvelApp/library/CloneSheets.h"
#include "QuorvelApp/library/Sidebar.h"
#include "QuorvelApp/panels/ClonePanels.h"
#include "QuorvelApp/panels/CopySheet.h"
#include "QuorvelApp/widgets/Sheet.h"

#include <QHBoxLayout>
#include <QSplitter>
#include <QStackedLayout>
#include <QVBoxLayout>

namespace quorvel {

using namespace Qt::StringLiterals;

ContentView::ContentView(AppModel& model, IconLoader& icons, FilePanels panels, QWidget* parent)
    : QWidget(parent),
      model_(model),
      icons_(icons),
      panels_(std::move(panels)),
      changes_(model),
      commands_(new CloneCommands(model, changes_, this)),
      sheets_(new CloneSheets(model, changes_, this)),
      clonePanels_(new ClonePanels(model, icons, panels_, this)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeToolbar());
    column->addWidget(makeColumns(), 1);
    new ModelAlert(model_, ModelAlert::Text::error, this);
    new ModelAlert(model_, ModelAlert::Text::status, this);
    connect(&model_, &AppModel::clonesChanged, this, &ContentView::showSelection);
    connect(&model_, &AppModel::clonesChanged, &icons_, &IconLoader::refresh);
    connect(&model_, &AppModel::startNewCloneRequestedChanged, this, &ContentView::takeRequest);
    connect(sidebar_, &Sidebar::selectionChanged, this, &ContentView::showSelection);
    connect(sidebar_, &Sidebar::newCloneRequested, this, &ContentView::showNewClone);
    connectCommands();
    connectChanges();
    showSelection();
}

void ContentView::connectCommands() {
    connect(commands_, &CloneCommands::editRequested, clonePanels_, &ClonePanels::edit);
    connect(commands_, &CloneCommands::duplicateRequested, clonePanels_, &ClonePanels::duplicate);
    connect(clonePanels_, &ClonePanels::duplicated, sidebar_, &Sidebar::select);
    connect(clonePanels_, &ClonePanels::openChanged, this, [this] {
        blockCommands();
        if (!clonePanels_->isOpen()) {
            takeRequest();
        }
    });
    connect(commands_, &CloneCommands::openRequested, this, [this] { detail().launch(); });
    connect(commands_, &CloneCommands::deletionRequested, this,
            [this] { detail().confirmDelete(); });
    connect(commands_, &CloneCommands::renameRequested, this, [this] { sidebar_->editName(); });
    connect(commands_, &CloneCommands::revealRequested, &model_, &AppModel::reveal);
    connect(commands_, &CloneCommands::logRequested, sheets_, &CloneSheets::showLog);
    connect(commands_, &CloneCommands::refreshRequested, this,
            [this](const InstanceRecord& clone) { sheets_->refresh({clone}); });
    connect(commands_, &CloneCommands::refreshAllRequested, this,
            [this] { sheets_->refresh(model_.clones()); });
    connect(commands_, &CloneCommands::stopRequested, this,
            [this](const InstanceRecord& clone) { changes_.stop(clone); });
    connect(commands_, &CloneCommands::stopCancelled, &changes_, &CloneChanges::cancelStop);
}

void ContentView::connectChanges() {
    connect(sidebar_, &Sidebar::editingChanged, this, &ContentView::blockCommands);
    connect(sidebar_, &Sidebar::nameEntered, this,
            [this](const InstanceRecord& clone, const std::string& name) {
                changes_.rename(clone, name);
            });
    connect(&changes_, &CloneChanges::renamed, sidebar_, &Sidebar::follow);
    connect(&changes_, &CloneChanges::activityChanged, this, &ContentView::showActivity);
}

void ContentView::blockCommands() {
    commands_->setBlocked(Sheet::isShownOver(this) || sidebar_->isEditing() ||
                          clonePanels_->isOpen());
}

bool ContentView::event(QEvent* event) {
    if (event->type() == Sheet::changeEvent()) {
        blockCommands();
    }
    return QWidget::event(event);
}

QWidget* ContentView::makeToolbar() {
    auto* bar = new QWidget(this);
    bar->setObjectName(u"toolbar"_s);
    bar->setAttribute(Qt::WA_StyledBackground);
    auto* add = makeButton({}, ButtonLook::tool, u"plus"_s);
    add->setAccessibleName(tr("New Clone"));
    add->setToolTip(tr("Create an isolated copy of an app"));
    connect(add, &QPushButton::clicked, this, &ContentView::showNewClone);
    auto* row = new QHBoxLayout(bar);
    row->setContentsMargins(14, 7, 12, 7);
    row->addStretch();
    row->addWidget(add);
    return bar;
}

// Reparenting restyles a widget and its children, so each gets its final parent at once.
QWidget* ContentView::makeColumns() {
    auto* columns = new QSplitter(Qt::Horizontal, this);
    columns->setHandleWidth(1);
    columns->setChildrenCollapsible(false);
    sidebar_ = new Sidebar(model_, icons_, *commands_, columns);
    auto* detailColumn = new QWidget(columns);
    detailColumn->setObjectName(u"detailColumn"_s);
    detailColumn->setAttribute(Qt::WA_StyledBackground);
    detailStates_ = new QStackedLayout(detailColumn);
    detailStates_->addWidget(makePlaceholder(detailColumn));
    columns->setStretchFactor(1, 1);
    columns->setSizes({Sidebar::idealColumnWidth, 680});
    return columns;
}

QWidget* ContentView::makePlaceholder(QWidget* parent) {
    auto* page = new QWidget(parent);
    auto* column = new QVBoxLayout(page);
    column->setSpacing(Spacing::group);
    column->addStretch();
    column->addWidget(new SymbolView(u"sidebar.left"_s, Ink::tertiary, 40), 0, Qt::AlignHCenter);
    placeholderText_ = makeLabel({}, TextStyle::body, Ink::secondary);
    column->addWidget(placeholderText_, 0, Qt::AlignHCenter);
    column->addStretch();
    return page;
}

void ContentView::showSelection() {
    const auto& selection = sidebar_->selection();
    commands_->setClone(selection);
    const InstanceRecord* clone = selection ? model_.clone(*selection) : nullptr;
    if (clone != nullptr) {
        detail().setClone(*clone);
        showActivity();
    } else {
        placeholderText_->setText(model_.clones().empty()
                                      ? tr("Create your first clone to get started.")
                                      : tr("Select a clone to manage it."));
    }
    detailStates_->setCurrentIndex(clone != nullptr ? 1 : 0);
}

void ContentView::showActivity() {
    const auto& selection = sidebar_->selection();
    if (const InstanceRecord* clone = selection ? model_.clone(*selection) : nullptr) {
        detail().setActivity(
            {.isChanging = changes_.isChanging(*clone), .isStopping = changes_.isStopping(*clone)});
    }
}

// Created at the first selection, so that the window opens sooner.
CloneDetailView& ContentView::detail() {
    if (detail_ == nullptr) {
        detail_ = new CloneDetailView(model_, icons_, this, detailStates_->parentWidget());
        detailStates_->addWidget(detail_);
    }
    return *detail_;
}

void ContentView::showNewClone() {
    if (!clonePanels_->isOpen() && !Sheet::isShownOver(this, Sheet::Place::top)) {
        auto* view = new NewCloneView(model_, icons_, panels_);
        connect(&view->session(), &NewCloneSession::copyBegan, this,
                [this](BackgroundCopy* copy) { showCopySheet(*copy, this); });
        newClone_ = new Sheet(view, this, Sheet::Place::top, NewCloneView::idealSize);
        connect(newClone_->dialog(), &QDialog::finished, this, [this] { newClone_.clear(); });
    }
}

void ContentView::takeRequest() {
    // While a clone is read, its sheet comes first.
    if (model_.startNewCloneRequested() && !clonePanels_->isReading()) {
        showNewClone();
        model_.setStartNewCloneRequested(false);
    }
}

} // namespace quorvel
