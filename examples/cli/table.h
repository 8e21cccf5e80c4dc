#pragma once

#include <QStringList>
#include <QVector>

/// Rows of cells, shown with their columns aligned.
class Table
{
public:
    explicit Table(const QStringList &heads);

    void add(const QStringList &cells);

    /// One line a row, the heads first. Two blanks are between columns, none after the last.
    QString text() const;

private:
    QVector<QStringList> m_rows;
};
