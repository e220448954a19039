#pragma once

#include "QuorvelApp/model/DisplayTexts.h"
#include "QuorvelApp/theme/Symbols.h"
#include "QuorvelApp/widgets/IconLoader.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QString>
#include <QWidget>

#include <filesystem>

/// The small pieces that the panes are made of. Every text is shown as plain text.
namespace quorvel {

struct InstanceRecord;

class WrappingText;

/// A label in one of the hierarchy's steps.
[[nodiscard]] QLabel* makeLabel(const QString& text, TextStyle style, Ink ink = Ink::text);

/// Gives a label the look of one of them.
void styleLabel(QLabel* label, TextStyle style, Ink ink);

/// One of the interface's own texts, wrapping over as many lines as it needs.
[[nodiscard]] QLabel* makeWrappingLabel(const QString& text, TextStyle style, Ink ink = Ink::text);

enum class ButtonLook { standard, small, prominent, destructive, tool };

/// A button; "&" in `text` marks its mnemonic. `symbol` may be empty. Return presses it while it
/// has the focus.
[[nodiscard]] QPushButton* makeButton(const QString& text, ButtonLook look,
                                      const QString& symbol = {});

/// Has Return press `button` from everywhere in its dialog where it means nothing else.
void makeDefault(QPushButton* button);

/// Text for a button, menu or check box in which nothing is a mnemonic.
[[nodiscard]] QString withoutMnemonics(QString text);

/// A hairline.
[[nodiscard]] QFrame* makeDivider(Qt::Orientation orientation);

/// A check box whose label wraps.
class WrappingCheckBox : public QWidget {
    Q_OBJECT

public:
    explicit WrappingCheckBox(const QString& label);

    [[nodiscard]] QCheckBox* box() const { return box_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QCheckBox* box_;
    QLabel* label_;
};

/// A choice that leaves the wheel to the pane in which it stands.
class PaneComboBox : public QComboBox {
    Q_OBJECT

public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent* event) override;
};

/// A label and its value, which can be selected and copied.
class InfoRow : public QWidget {
    Q_OBJECT

public:
    static constexpr int labelWidth = 92;

    explicit InfoRow(const DetailRow& row);

    [[nodiscard]] QString label() const;
    [[nodiscard]] QString value() const;

private:
    QLabel* label_;
    WrappingText* value_;
};

/// The icon of a file or bundle in a square.
class AppIcon : public QWidget {
    Q_OBJECT

public:
    /// `loader` must outlive the widget.
    AppIcon(IconLoader& loader, int size, QWidget* parent = nullptr);

    void setPath(const std::filesystem::path& path);
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    IconLoader& loader_;
    std::filesystem::path path_{};
};

/// The file that a clone's icon is drawn from, which may be missing.
[[nodiscard]] std::filesystem::path iconPathOf(const InstanceRecord& clone);

/// Green while the clone runs.
class StatusDot : public QWidget {
    Q_OBJECT

public:
    static constexpr int diameter = 7;

    explicit StatusDot(QWidget* parent = nullptr);
    void setRunning(bool running);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool running_ = false;
};

/// Turns while it is visible.
class Spinner : public QWidget {
    Q_OBJECT

public:
    explicit Spinner(int size, Ink ink = Ink::secondary, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    Ink ink_;
    int step_ = 0;
    int timer_ = 0;
};

} // namespace quorvel
