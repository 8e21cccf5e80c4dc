#include "audio/summary.h"

#include "hostkit/wavfile.h"

#include <QFile>
#include <QtEndian>

namespace {

constexpr qint64 mostRanges = 65536;
constexpr int blockFrames = 16384;

} // namespace

Summary Summary::of(QIODevice *samples, qint64 frames, int channels)
{
    Summary summary;
    const qint64 frameSize = channels * qint64(sizeof(qint16));
    const qint64 stretch = qMax<qint64>(1, (frames + mostRanges - 1) / mostRanges);
    Range *last = nullptr; // of the ranges
    qint64 done = 0;
    while (done < frames) {
        const QByteArray block =
            samples->read(qMin<qint64>(blockFrames, frames - done) * frameSize);
        const qint64 count = block.size() / frameSize;
        if (count == 0)
            break;
        const char *frame = block.constData();
        for (const char *end = frame + count * frameSize; frame < end; frame += frameSize) {
            const auto sample = qFromLittleEndian<qint16>(frame);
            if (done++ % stretch == 0) {
                summary.m_ranges.append({sample, sample});
                last = &summary.m_ranges.last();
            }
            last->low = qMin(last->low, sample);
            last->high = qMax(last->high, sample);
        }
    }
    return summary;
}

Summary Summary::ofFile(const QString &path)
{
    const auto format = WavFile::format(path);
    QFile file(path);
    if (!format || format->coding != 1 || format->bitsPerSample != 16
        || !file.open(QIODevice::ReadOnly) || !file.seek(format->dataStart))
        return {};
    return of(&file, format->dataSize / (qint64(sizeof(qint16)) * format->channels),
              format->channels);
}

bool Summary::isEmpty() const { return m_ranges.isEmpty(); }

Summary::Range Summary::range(double from, double to) const
{
    const int count = m_ranges.size();
    if (count == 0)
        return {};
    const int first = qBound(0, int(from * count), count - 1);
    const int end = qBound(first + 1, int(to * count), count);
    Range range = m_ranges.at(first);
    for (int i = first + 1; i < end; ++i)
        range = {qMin(range.low, m_ranges.at(i).low), qMax(range.high, m_ranges.at(i).high)};
    return range;
}
