#include "recognize/progressdelegate.h"

#include "recognize/recognitionqueue.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionProgressBar>

void ProgressDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                             const QModelIndex &index) const
{
    const QVariant percent = index.data(RecognitionQueue::PercentRole);
    if (!percent.isValid())
        return QStyledItemDelegate::paint(painter, option, index);
    QStyleOptionProgressBar bar;
    bar.rect = option.rect.adjusted(1, 1, -1, -1);
    bar.palette = option.palette;
    bar.fontMetrics = option.fontMetrics;
    bar.state = option.state | QStyle::State_Horizontal;
    bar.direction = option.direction;
    bar.maximum = 100;
    bar.progress = qMax(0, percent.toInt());
    bar.text = index.data().toString();
    bar.textVisible = true;
    bar.textAlignment = Qt::AlignCenter;
    const QWidget *widget = option.widget;
    const QStyle *style = widget ? widget->style() : QApplication::style();
    style->drawControl(QStyle::CE_ProgressBar, &bar, painter, widget);
}
