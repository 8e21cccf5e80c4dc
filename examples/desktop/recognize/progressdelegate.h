#pragma once

#include <QStyledItemDelegate>

/// Draws the progress of a row as a bar while it is under way.
class ProgressDelegate : public QStyledItemDelegate
{
    Q_OBJECT
    Q_DISABLE_COPY(ProgressDelegate)

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option,
               const QModelIndex &index) const override;
};
