#pragma once

#include <QStyledItemDelegate>

/// Draws the cells of the tree. The tool tip of a cell shows the text that is too long for it, above the
/// item's own explanation. A first column without an icon keeps the space for one, so that the texts line up,
/// and an adapter that has an explanation gets a warning sign after its name.
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
