#pragma once

#include <QByteArray>
#include <QDataStream>
#include <QVector>

/// A WAV file of one channel with 16-bit samples.
inline QByteArray wav(const QVector<qint16> &samples, quint32 rate)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    const auto size = quint32(samples.size()) * 2;
    stream.writeRawData("RIFF", 4);
    stream << size + 36;
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(1) << rate << rate * 2 << quint16(2)
           << quint16(16);
    stream.writeRawData("data", 4);
    stream << size;
    for (const qint16 sample : samples)
        stream << sample;
    return bytes;
}
