#pragma once

#include <QMenu>
#include <QPointer>

#include <vector>

namespace quorvel {

/// The commands that every program has for the text being edited. They act on the widget that has
/// the focus, as if the user had pressed their keys there.
class EditMenu : public QMenu {
    Q_OBJECT

public:
    explicit EditMenu(QWidget* parent = nullptr);

private:
    struct Command {
        QKeySequence::StandardKey key;
        QAction* action;
    };

    void add(const QString& text, QKeySequence::StandardKey key);
    void remember(QWidget* focused);
    /// Enables the commands that can do something now.
    void refresh();

    std::vector<Command> commands_{};
    QPointer<QWidget> field_{}; ///< the last focused widget, not counting menus
};

} // namespace quorvel
