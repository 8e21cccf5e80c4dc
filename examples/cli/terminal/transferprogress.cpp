#include "terminal/transferprogress.h"

#include <QLocale>

namespace {

constexpr int barWidth = 20;

QString sizeText(qint64 bytes) { return QLocale::c().formattedDataSize(bytes, 1); }

QString bar(qint64 percent)
{
    const int filled = int(percent * barWidth / 100);
    return QStringLiteral("[%1]").arg(
        QString(filled, QLatin1Char('#')).leftJustified(barWidth, QLatin1Char('.')));
}

QString durationText(qint64 seconds)
{
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

} // namespace

TransferProgress::TransferProgress(qint64 kept, qint64 length)
    : m_kept(kept)
    , m_length(length)
{
    m_since.start();
}

QString TransferProgress::line(qint64 received) const
{
    const qint64 there = m_kept + received;
    const qint64 elapsed = qMax<qint64>(m_since.elapsed(), 1); // ms
    const qint64 rate = received * 1000 / elapsed;             // bytes a second
    if (m_length <= 0)
        return QStringLiteral("%1, %2/s").arg(sizeText(there), sizeText(rate));
    const qint64 percent = qMin<qint64>(100 * there / m_length, 100);
    QString share =
        QStringLiteral("%1 % %2 %3/s").arg(percent, 3).arg(bar(percent), sizeText(rate));
    if (rate == 0)
        return share;
    return QStringLiteral("%1, %2 left").arg(share, durationText((m_length - there) / rate));
}
