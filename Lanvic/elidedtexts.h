#pragma once

#include <QStyledItemDelegate>

/// Tells in a tool tip what a cell of a view has no room for.
class ElidedTexts : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
};
