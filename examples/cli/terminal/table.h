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

    /// The same where it is not wider than @p columns (0: whatever that is); otherwise the cells
    /// stand below each other, behind their heads, with an empty line between rows.
    QString fitting(int columns) const;

private:
    QVector<QStringList> m_rows;
};
