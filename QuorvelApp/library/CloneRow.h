#pragma once

#include "QuorvelApp/widgets/IconLoader.h"

#include <QStyledItemDelegate>

namespace quorvel {

/// Paints a clone in the sidebar: icon, name, target, and a dot while it is running. Its name can
/// be edited: Return and leaving the field enter the new name, Escape gives up.
class CloneRow : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int iconSize = 30;
    static constexpr QLatin1StringView editorName{"nameEditor"};

    explicit CloneRow(IconLoader& icons, QObject* parent = nullptr);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    [[nodiscard]] QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const override;
    void setEditorData(QWidget* editor, const QModelIndex& index) const override;
    void setModelData(QWidget* editor, QAbstractItemModel* model,
                      const QModelIndex& index) const override;
    void updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const override;

Q_SIGNALS:
    /// The user has entered another name. The row keeps the old one until the clone has it.
    void nameEntered(const QString& id, const QString& name) const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Where a row's parts are, mirrored for right-to-left layouts.
    struct Places {
        QRect background{};
        QRect icon{};
        QRect name{};
        QRect summary{};
        QRect dot{};
    };
    [[nodiscard]] static Places places(const QStyleOptionViewItem& option);

    IconLoader& icons_;
};

} // namespace quorvel
