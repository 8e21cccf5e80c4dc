#include "audio/waveformpainter.h"

#include "audio/summary.h"

#include <QLine>
#include <QPainter>
#include <QVector>

namespace {

constexpr int loudest = 32768;

} // namespace

WaveformPainter::WaveformPainter(const QRect &area, const QPalette &palette)
    : m_area(area)
    , m_palette(palette)
{
}

void WaveformPainter::paint(QPainter *painter, const Summary &summary, const Marks &marks) const
{
    painter->fillRect(m_area, m_palette.base());
    if (summary.isEmpty())
        return;
    QVector<QLine> played;
    QVector<QLine> coming;
    const int head = xOf(marks.playHead);
    for (int x = m_area.left(); x <= m_area.right(); ++x) {
        const Summary::Range range = summary.range(placeAt(x), placeAt(x + 1));
        (x < head ? played : coming).append({x, yOf(range.high), x, yOf(range.low)});
    }
    painter->setPen(m_palette.color(QPalette::PlaceholderText));
    painter->drawLines(coming);
    painter->setPen(m_palette.color(QPalette::Highlight));
    painter->drawLines(played);
    if (marks.hasSelection()) {
        QColor colour = m_palette.color(QPalette::Highlight);
        colour.setAlpha(80);
        const int left = xOf(marks.selectionStart);
        painter->fillRect(left, m_area.top(), xOf(marks.selectionEnd) - left + 1, m_area.height(),
                          colour);
    }
    painter->setPen(m_palette.color(QPalette::Text));
    painter->drawLine(head, m_area.top(), head, m_area.bottom());
}

double WaveformPainter::placeAt(int x) const
{
    return double(x - m_area.left()) / qMax(1, m_area.width());
}

int WaveformPainter::xOf(double place) const
{
    return qBound(m_area.left(), m_area.left() + int(place * m_area.width()), m_area.right());
}

int WaveformPainter::yOf(int sample) const
{
    const int half = (m_area.height() - 1) / 2;
    return m_area.top() + half - sample * half / loudest;
}
