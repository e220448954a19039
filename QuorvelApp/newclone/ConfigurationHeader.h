#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

namespace quorvel {

class AppIcon;
class ElidedLabel;
class SymbolView;

/// The chosen target: the app with its icon, or a symbol for the other kinds.
class ConfigurationHeader : public QWidget {
    Q_OBJECT

public:
    ConfigurationHeader(NewCloneSession& session, IconLoader& icons);

private:
    void refresh();

    NewCloneSession& session_;
    AppIcon* icon_;
    SymbolView* symbol_;
    ElidedLabel* title_;
    ElidedLabel* subtitle_;
};

} // namespace quorvel
