#pragma once

#include "QuorvelApp/model/NewCloneSession.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QWidget>

class QLabel;
class QFrame;
class QStackedLayout;

namespace quorvel {

class SymbolView;
class WrappingText;

/// The clone's settings, or a prompt while there is no target.
class ConfigurationPane : public QWidget {
    Q_OBJECT

public:
    static constexpr int paneWidth = 300;

    ConfigurationPane(NewCloneSession& session, IconLoader& icons, QWidget* parent);

private:
    [[nodiscard]] QWidget* makePrompt();
    [[nodiscard]] QWidget* makeSettings(IconLoader& icons);
    [[nodiscard]] QWidget* makeNameSection();
    void refresh();

    NewCloneSession& session_;
    QStackedLayout* states_;
    SymbolView* promptSymbol_ = nullptr;
    QLabel* promptText_ = nullptr;
    QFrame* warning_ = nullptr;
    WrappingText* savedTo_ = nullptr;
    QFrame* replaced_ = nullptr;
    WrappingText* replacedText_ = nullptr;
    QWidget* strategy_ = nullptr;
};

} // namespace quorvel
