#pragma once

#include "QuorvelApp/theme/Theme.h"

#include <QIcon>
#include <QString>
#include <QWidget>

namespace quorvel {

/// The colors of the palette that symbols and texts use.
enum class Ink { text, secondary, tertiary, accent, onAccent, orange, danger };

/// Returns an ink's color.
[[nodiscard]] QColor inkColor(Ink ink, const Colors& colors);

/// Returns one of our symbols (`symbols/NAME.svg`) as an icon, painted in the current colors of
/// the application's palette, and crisp at every size and pixel ratio. An icon that points along
/// the reading direction may be `mirrored` for right-to-left layouts.
[[nodiscard]] QIcon symbolIcon(const QString& name, Ink ink = Ink::text, bool mirrored = false);

/// A decorative symbol, ignored by screen readers.
class SymbolView : public QWidget {
    Q_OBJECT

public:
    /// `size` is in points.
    SymbolView(const QString& name, Ink ink, int size, QWidget* parent = nullptr);

    /// Shows another symbol.
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
