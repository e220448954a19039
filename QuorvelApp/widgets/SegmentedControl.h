#pragma once

#include <QStringList>
#include <QWidget>

class QButtonGroup;

namespace quorvel {

/// A row of segments of which exactly one is selected, initially the first.
class SegmentedControl : public QWidget {
    Q_OBJECT

public:
    SegmentedControl(const QString& accessibleName, const QStringList& segments,
                     QWidget* parent = nullptr);

Q_SIGNALS:
    void chosen(int index);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fixFocus();

    QButtonGroup* buttons_;
};

} // namespace quorvel
