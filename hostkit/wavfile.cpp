#include "hostkit/wavfile.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <QtEndian>

namespace {

constexpr int headSize = 8;                // "RIFF" and the number of bytes that follow
constexpr int chunkHeadSize = 8;           // its name and the number of bytes that follow
constexpr int formatSize = 16;             // bytes that every format has
constexpr quint32 openLength = 0xffffffff; // whoever streams a file does not know its length

quint16 number16(const QByteArray &bytes, int place)
{
    return qFromLittleEndian<quint16>(bytes.constData() + place);
}

quint32 number32(const QByteArray &bytes, int place)
{
    return qFromLittleEndian<quint32>(bytes.constData() + place);
}

// False where the bytes are too few, or say that there is no sound.
bool readFormat(const QByteArray &bytes, WavFile::Format *format)
{
    constexpr int extensible = 0xfffe;
    if (bytes.size() < formatSize)
        return false;
    format->coding = number16(bytes, 0);
    format->channels = number16(bytes, 2);
    format->sampleRate = int(number32(bytes, 4) & 0x7fffffff);
    format->bitsPerSample = number16(bytes, 14);
    if (format->coding == extensible && bytes.size() >= 26)
        format->coding = number16(bytes, 24);
    return format->channels > 0 && format->sampleRate > 0 && format->bitsPerSample >= 8;
}

} // namespace

double WavFile::Format::duration() const
{
    const int bytesPerSample = bitsPerSample / 8;
    const double bytesPerSecond = double(sampleRate) * channels * bytesPerSample;
    return double(dataSize) / bytesPerSecond;
}

// Chunks follow each other, each padded to an even length.
std::optional<WavFile::Format> WavFile::format(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray head = file.read(headSize + 4);
    if (!head.startsWith("RIFF") || !head.endsWith("WAVE"))
        return {};
    Format format;
    bool hasFormat = false;
    for (;;) {
        const QByteArray chunk = file.read(chunkHeadSize);
        if (chunk.size() < chunkHeadSize)
            return {};
        const qint64 size = number32(chunk, 4);
        const qint64 start = file.pos();
        if (chunk.startsWith("fmt "))
            hasFormat = readFormat(file.read(qMin<qint64>(size, 40)), &format);
        if (chunk.startsWith("data")) {
            format.dataStart = start;
            format.dataSize = qMin(size, file.size() - start);
            return hasFormat ? std::optional<Format>(format) : std::nullopt;
        }
        if (!file.seek(start + size + size % 2))
            return {};
    }
}

double WavFile::duration(const QString &path)
{
    const auto found = format(path);
    return found ? found->duration() : -1;
}

bool WavFile::isCutShort(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return true;
    const QByteArray head = file.read(headSize);
    if (!QByteArray("RIFF").startsWith(head.left(4)))
        return false;
    if (head.size() < headSize)
        return true;
    const auto announced = qFromLittleEndian<quint32>(head.constData() + 4);
    return announced != openLength && file.size() < headSize + qint64(announced);
}
