#include "elidedtextdelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QHelpEvent>
#include <QRegularExpression>
#include <QStyle>
#include <QToolTip>

namespace {

/// An escaped text as markup: its lines stay lines, and no MAC address is broken in two.
QString toMarkup(QString escaped)
{
    static const QRegularExpression colonInMacAddress(
        QStringLiteral("(?<=\\b[0-9A-F]{2}):(?=[0-9A-F]{2}\\b)"));
    const QString wordJoiner(QChar(0x2060));
    return escaped.replace(colonInMacAddress, QLatin1Char(':') + wordJoiner)
        .replace(QLatin1Char('\n'), QLatin1String("<br>"));
}

} // namespace

bool ElidedTextDelegate::helpEvent(QHelpEvent* event, QAbstractItemView* view,
                                   const QStyleOptionViewItem& option, const QModelIndex& index)
{
    const QRect cell = view->visualRect(index);
    QStringList lines;
    if (event->type() == QEvent::ToolTip && sizeHint(option, index).width() > cell.width()) {
        lines += index.data(Qt::DisplayRole).toString().toHtmlEscaped();
    }
    if (const QString explanation = index.data(Qt::ToolTipRole).toString();
        event->type() == QEvent::ToolTip && !explanation.isEmpty()) {
        lines += toMarkup(explanation);
    }
    if (lines.isEmpty()) {
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    }
    // Only markup is broken into lines, and a text that looks like markup would be taken for it.
    const QString text = QStringLiteral("<span>%1</span>").arg(lines.join(QLatin1String("<br>")));
    QToolTip::showText(event->globalPos(), text, view, cell);
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
