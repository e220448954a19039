#pragma once

#include <QWidget>

class QPushButton;

namespace quorvel {

/// A title that shows and hides its content; initially collapsed.
class DisclosureGroup : public QWidget {
    Q_OBJECT

public:
    /// Takes ownership of `content`. "&" in `title` marks its mnemonic.
    DisclosureGroup(const QString& title, QWidget* content);

Q_SIGNALS:
    void toggled(bool expanded);

private:
    void show(bool expanded);

    QPushButton* title_;
    QWidget* content_;
};

} // namespace quorvel
