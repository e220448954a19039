#include "QuorvelApp/newclone/SheetPanes.h"

#include "QuorvelApp/Components.h"
#include "QuorvelApp/newclone/ConfigurationPane.h"
#include "QuorvelApp/newclone/TargetPane.h"

#include <QHBoxLayout>

namespace quorvel {

SheetPanes::SheetPanes(NewCloneSession& session, IconLoader& icons, QWidget* parent)
    : QWidget(parent) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(new TargetPane(session, icons, this), 1);
    row->addWidget(makeDivider(Qt::Vertical));
    row->addWidget(new ConfigurationPane(session, icons, this));
}

} // namespace quorvel
