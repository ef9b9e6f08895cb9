#pragma once

#include <QStyledItemDelegate>

/// Draws the cells of the tree. Tells in a tool tip what a cell has no room for, above what the item itself
/// has to explain. Leaves the place of the picture free in a first column without one, so that its text
/// stands below those that have one, and puts a sign behind the text of an adapter that has something to
/// explain.
class ElidedTextDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;

protected:
    void initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const override;
};
