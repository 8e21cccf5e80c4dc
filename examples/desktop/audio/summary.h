#pragma once

#include <QVector>

class QIODevice;
class QString;

/// A recording in little, to be drawn: the lowest and the highest sample of each of at most 65536
/// stretches of equal length, whatever the recording takes.
class Summary
{
public:
    struct Range
    {
        qint16 low = 0;
        qint16 high = 0;
    };

    Summary() = default;

    /// Of @p frames frames of 16-bit little-endian samples that @p samples goes on with; of several
    /// channels the first one counts. Fewer where @p samples ends before.
    static Summary of(QIODevice *samples, qint64 frames, int channels);

    /// Of a WAV file with 16-bit PCM samples. Empty for any other.
    static Summary ofFile(const QString &path);

    bool isEmpty() const;

    /// The extremes between two places from 0, the beginning, to 1, the end. At least one stretch
    /// is looked at.
    Range range(double from, double to) const;

private:
    QVector<Range> m_ranges;
};
