#include "audio/playbacksource.h"

PlaybackSource::PlaybackSource(QObject *parent)
    : QIODevice(parent)
{
}

bool PlaybackSource::load(const QString &path)
{
    unload();
    if (path.isEmpty())
        return false;
    const auto format = WavFile::format(path);
    m_file.setFileName(path);
    if (!format || format->coding != 1 || !m_file.open(QIODevice::ReadOnly))
        return false;
    m_format = *format;
    return open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

void PlaybackSource::unload()
{
    close();
    m_file.close();
    m_format = {};
    m_place = m_loopStart = m_loopEnd = 0;
}

const WavFile::Format &PlaybackSource::format() const { return m_format; }

int PlaybackSource::frameSize() const
{
    return qMax(1, m_format.channels * m_format.bitsPerSample / 8);
}

qint64 PlaybackSource::place() const { return m_place; }

void PlaybackSource::setPlace(qint64 place)
{
    m_place = whole(qBound<qint64>(0, place, m_format.dataSize));
}

void PlaybackSource::setLoop(qint64 start, qint64 end)
{
    m_loopStart = whole(start);
    m_loopEnd = whole(end);
}

bool PlaybackSource::hasEnded() const { return !loops() && m_place >= whole(m_format.dataSize); }

bool PlaybackSource::isSequential() const { return true; }

qint64 PlaybackSource::bytesAvailable() const { return m_format.dataSize - m_place; }

qint64 PlaybackSource::readData(char *data, qint64 most)
{
    if (loops() && m_place >= m_loopEnd)
        m_place = m_loopStart;
    const qint64 end = loops() ? m_loopEnd : whole(m_format.dataSize);
    const qint64 bytes = whole(qMin(most, end - m_place));
    if (bytes <= 0 || !m_file.seek(m_format.dataStart + m_place))
        return 0;
    const qint64 read = m_file.read(data, bytes);
    m_place += qMax<qint64>(read, 0);
    return read;
}

qint64 PlaybackSource::writeData(const char *, qint64) { return -1; }

bool PlaybackSource::loops() const { return m_loopEnd > m_loopStart; }

qint64 PlaybackSource::whole(qint64 bytes) const { return bytes - bytes % frameSize(); }
