#include "elidedtextdelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QStyle>
#include <QToolTip>

bool ElidedTextDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                   const QStyleOptionViewItem& option, const QModelIndex& index)
{
    const QRect cell = view->visualRect(index);
    if (event->type() != QEvent::ToolTip || sizeHint(option, index).width() <= cell.width()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    // A tool tip would take a text that looks like markup for markup.
    QString text = index.data(Qt::DisplayRole).toString().toHtmlEscaped();
    if (const QString explanation = index.data(Qt::ToolTipRole).toString(); !explanation.isEmpty()) {
        text += QStringLiteral("<br>%1").arg(explanation);
    }
    QToolTip::showText(event->globalPos(), QStringLiteral("<span>%1</span>").arg(text), view, cell);
    return true;
}

void ElidedTextDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                               const QModelIndex& index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    if (index.parent().isValid() || index.column() != 0 || index.data(Qt::ToolTipRole).toString().isEmpty()) {
        return;
    }
    const QStyle& style = option.widget != nullptr ? *option.widget->style() : *QApplication::style();
    const int size = style.pixelMetric(QStyle::PM_SmallIconSize, &option, option.widget);
    const int behindText = sizeHint(option, index).width();
    const QRect place = QStyle::alignedRect(option.direction, Qt::AlignLeft | Qt::AlignVCenter, {size, size},
                                            option.rect.adjusted(behindText, 0, -behindText, 0));
    style.standardIcon(QStyle::SP_MessageBoxWarning, &option, option.widget).paint(painter, place);
}

void ElidedTextDelegate::initStyleOption(QStyleOptionViewItem* option, const QModelIndex& index) const
{
    QStyledItemDelegate::initStyleOption(option, index);
    if (index.column() == 0) {
        option->features |= QStyleOptionViewItem::HasDecoration; // As wide as the view's icons.
    }
}
