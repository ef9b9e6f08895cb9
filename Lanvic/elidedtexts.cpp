#include "elidedtexts.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

bool ElidedTexts::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                            const QModelIndex& index)
{
    const QRect cell = view->visualRect(index);
    if (event->type() != QEvent::ToolTip || sizeHint(option, index).width() <= cell.width()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    // Tool tips take a text that looks so for markup.
    const QString text = index.data(Qt::DisplayRole).toString().toHtmlEscaped();
    QToolTip::showText(event->globalPos(), QStringLiteral("<span>%1</span>").arg(text), view, cell);
    return true;
}
