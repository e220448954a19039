#include "QuorvelApp/library/MigrationCallout.h"

#include "QuorvelApp/Components.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace quorvel {

using namespace Qt::StringLiterals;

MigrationCallout::MigrationCallout(QWidget* parent) : QFrame(parent) {
    setObjectName(u"callout"_s);
    auto* button = makeButton(tr("&Move files to shared folders"), ButtonLook::small);
    connect(button, &QPushButton::clicked, this, &MigrationCallout::migrationRequested);
    auto* column = new QVBoxLayout;
    column->setSpacing(5);
    column->addWidget(makeWrappingLabel(tr("This clone keeps its own Downloads, Documents & "
                                           "Desktop"),
                                        TextStyle::medium));
    column->addWidget(makeWrappingLabel(
        tr("Files it saves are tucked inside its data folder. Move them into your Mac's shared "
           "folders and share them from now on — accounts and settings stay isolated."),
        TextStyle::caption, Ink::secondary));
    column->addSpacing(Spacing::tight);
    column->addWidget(button, 0, Qt::AlignLeft);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(Spacing::wide, Spacing::group, Spacing::wide, Spacing::group);
    row->setSpacing(Spacing::group);
    row->addWidget(new SymbolView(u"arrow.down.doc"_s, Ink::accent, 20), 0, Qt::AlignTop);
    row->addLayout(column, 1);
}

} // namespace quorvel
