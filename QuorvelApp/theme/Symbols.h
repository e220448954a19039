#pragma once

#include "QuorvelApp/theme/Theme.h"

#include <QIcon>
#include <QString>
#include <QWidget>

namespace quorvel {

/// Which of the palette's colours a symbol takes.
enum class Ink { text, secondary, tertiary, accent, onAccent, orange, danger };

[[nodiscard]] QColor inkColor(Ink ink, const Colors& colors);

/// One of our symbols (`symbols/NAME.svg`) as an icon, in the colours of the application's palette
/// at each painting, and crisp at every size and pixel ratio. An icon that points along the reading
/// direction may be `mirrored` for right-to-left layouts.
[[nodiscard]] QIcon symbolIcon(const QString& name, Ink ink = Ink::text, bool mirrored = false);

/// A symbol that only shows something, and is of no interest to a screen reader.
class SymbolView : public QWidget {
    Q_OBJECT

public:
    SymbolView(const QString& name, Ink ink, int size, QWidget* parent = nullptr);

    void setSymbol(const QString& name);
    [[nodiscard]] QString symbol() const { return name_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString name_;
    Ink ink_;
    QIcon icon_;
};

} // namespace quorvel
