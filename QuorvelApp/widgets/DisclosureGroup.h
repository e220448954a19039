#pragma once

#include <QWidget>

class QPushButton;

namespace quorvel {

/// A title that shows and hides its content; initially collapsed.
class DisclosureGroup : public QWidget {
    Q_OBJECT

public:
    /// "&" in `title` marks its mnemonic.
    DisclosureGroup(const QString& title, QWidget* parent);

    /// Sets what is shown below the title; to be called once. `content` should have this group as
    /// its parent already, since reparenting restyles it.
    void setContent(QWidget* content);

Q_SIGNALS:
    void toggled(bool expanded);

private:
    void show(bool expanded);

    QPushButton* title_;
    QWidget* content_ = nullptr;
};

} // namespace quorvel
