#include "QuorvelApp/panels/DuplicateView.h"

#include "Presentation/SizeText.h"
#include "QuorvelApp/Components.h"
#include "QuorvelApp/model/CloneListModel.h"
#include "QuorvelApp/model/DisplayText.h"
#include "QuorvelApp/model/QtText.h"
#include "QuorvelApp/widgets/CopyableLabel.h"
#include "QuorvelApp/widgets/SheetFooter.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QVBoxLayout>

namespace quorvel {
namespace {

constexpr int panelWidth = 400;

} // namespace

DuplicateView::DuplicateView(AppModel& model, IconLoader& icons, const InstanceRecord& original)
    : session_(model, original) {
    auto* footer = new SheetFooter(tr("Duplicate"), tr("Duplicating…"));
    footer->layout()->setContentsMargins(0, 0, 0, 0);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(22, 22, 22, 18);
    column->setSpacing(Spacing::section);
    column->addWidget(makeHeader(icons));
    column->addWidget(makeName());
    column->addWidget(makeDataBox());
    column->addStretch();
    column->addWidget(footer);
    connect(footer, &SheetFooter::cancelled, this, &DuplicateView::reject);
    connect(footer, &SheetFooter::confirmed, &session_, &DuplicateSession::duplicate);
    connect(&session_, &DuplicateSession::duplicated, this, &QDialog::accept);
    const auto refresh = [this, footer] {
        footer->setState(session_.canDuplicate(), session_.isWorking());
        footer->setCancellable(!session_.isWorking());
    };
    connect(&session_, &DuplicateSession::changed, footer, refresh);
    refresh();
}

QWidget* DuplicateView::makeHeader(IconLoader& icons) {
    const QString title =
        tr("Duplicate “%1”").arg(displayLine(session_.original().config.displayName));
    setWindowTitle(title);
    setAccessibleName(title);
    auto* header = new QWidget;
    auto* icon = new AppIcon(icons, 48);
    icon->setPath(iconPathOf(session_.original()));
    auto* heading = new WrappingText(TextStyle::headline);
    heading->setFullText(title);
    heading->setFocusPolicy(Qt::NoFocus);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(Spacing::tight);
    texts->addWidget(heading);
    texts->addWidget(makeWrappingLabel(tr("The duplicate gets the same options and icon, and an "
                                          "identity and a data folder of its own."),
                                       TextStyle::callout, Ink::secondary));
    texts->addStretch();
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Spacing::wide);
    row->addWidget(icon, 0, Qt::AlignTop);
    row->addLayout(texts, 1);
    header->setFixedWidth(panelWidth);
    return header;
}

QWidget* DuplicateView::makeName() {
    auto* section = new QWidget;
    auto* label = makeLabel(tr("Name"), TextStyle::captionMedium);
    name_ = new QLineEdit(qtText(session_.name()));
    name_->setAccessibleName(tr("Name"));
    label->setBuddy(name_);
    connect(name_, &QLineEdit::textChanged, &session_,
            [this](const QString& text) { session_.setName(text.toStdString()); });
    auto* column = new QVBoxLayout(section);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Spacing::close);
    column->addWidget(label);
    column->addWidget(name_);
    return section;
}

QWidget* DuplicateView::makeDataBox() {
    auto* section = new QWidget;
    auto* box = new QCheckBox;
    connect(box, &QCheckBox::toggled, &session_, &DuplicateSession::setWithData);
    const auto showSize = [this, box] {
        const auto& size = session_.dataSize();
        box->setText(size ? tr("Copy the &data (%1)").arg(qtText(sizeText(*size)))
                          : tr("Copy the &data"));
    };
    connect(&session_, &DuplicateSession::changed, box, showSize);
    showSize();
    auto* column = new QVBoxLayout(section);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(Spacing::tight);
    column->addWidget(box);
    column->addWidget(
        makeWrappingLabel(tr("With its accounts, settings and files, while it is not running. "
                             "Otherwise the duplicate starts with an empty data folder."),
                          TextStyle::caption, Ink::secondary));
    return section;
}

void DuplicateView::reject() {
    if (!session_.isWorking()) {
        QDialog::reject();
    }
}

void DuplicateView::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    name_->setFocus();
    name_->selectAll();
}

} // namespace quorvel
