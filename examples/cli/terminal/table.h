#pragma once

#include <QStringList>
#include <QVector>

/// Rows of cells, shown with their columns aligned.
class Table
{
public:
    explicit Table(const QStringList &heads);

    void add(const QStringList &cells);

    /// One line a row, the heads first, with two blanks between columns and none at the end.
    QString text() const;

private:
    QVector<QStringList> m_rows;
};
