#include "terminal/table.h"

#include "terminal/console.h"

#include <algorithm>
#include <iterator>

namespace {

// The characters that take two columns of a terminal: East Asian ones and pictures.
constexpr struct
{
    uint first;
    uint last;
} wide[] = {
    {0x1100, 0x115f}, {0x2e80, 0x303e}, {0x3041, 0xa4cf}, {0xac00, 0xd7a3},   {0xf900, 0xfaff},
    {0xfe30, 0xfe6f}, {0xff00, 0xff60}, {0xffe0, 0xffe6}, {0x1f300, 0x1faff}, {0x20000, 0x3fffd},
};

int columnsOf(uint character)
{
    if (QChar::category(character) == QChar::Mark_NonSpacing)
        return 0;
    const bool isWide =
        std::any_of(std::begin(wide), std::end(wide), [character](const auto &range) {
            return character >= range.first && character <= range.last;
        });
    return isWide ? 2 : 1;
}

int columnsOf(const QString &text)
{
    int columns = 0;
    const QVector<uint> characters = text.toUcs4();
    for (const uint character : characters)
        columns += columnsOf(character);
    return columns;
}

QString line(const QStringList &cells, const QVector<int> &widths)
{
    QString text;
    for (int i = 0; i < cells.size(); ++i)
        text += cells.at(i) + QString(widths.at(i) - columnsOf(cells.at(i)) + 2, QLatin1Char(' '));
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return text + QLatin1Char('\n');
}

} // namespace

Table::Table(const QStringList &heads)
    : m_rows{heads}
{
}

void Table::add(const QStringList &cells)
{
    QStringList row;
    for (const QString &cell : cells)
        row.append(Console::onOneLine(cell));
    m_rows.append(row);
}

QString Table::text() const
{
    QVector<int> widths(m_rows.at(0).size());
    for (const QStringList &row : m_rows) {
        for (int i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths.at(i), columnsOf(row.at(i)));
    }
    QString text;
    for (const QStringList &row : m_rows)
        text += line(row, widths);
    return text;
}

QString Table::fitting(int columns) const
{
    QString table = text();
    const QStringList lines = table.split(QLatin1Char('\n'));
    const bool fits =
        columns <= 0 || std::all_of(lines.begin(), lines.end(), [columns](const QString &line) {
            return columnsOf(line) <= columns;
        });
    if (fits)
        return table;
    QString text;
    for (int row = 1; row < m_rows.size(); ++row) {
        text += row > 1 ? QStringLiteral("\n") : QString();
        for (int i = 0; i < m_rows.at(row).size(); ++i)
            text += QStringLiteral("%1: %2\n").arg(m_rows.at(0).at(i), m_rows.at(row).at(i));
    }
    return text;
}
