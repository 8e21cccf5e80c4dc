#include "audio/player.h"

#include <QAudioDeviceInfo>
#include <QAudioFormat>
#include <QAudioOutput>

namespace {

constexpr int interval = 30; // ms between two looks at the position

QAudioFormat audioFormat(const WavFile::Format &file)
{
    QAudioFormat format;
    format.setCodec(QStringLiteral("audio/pcm"));
    format.setByteOrder(QAudioFormat::LittleEndian);
    format.setSampleRate(file.sampleRate);
    format.setChannelCount(file.channels);
    format.setSampleSize(file.bitsPerSample);
    format.setSampleType(file.bitsPerSample == 8 ? QAudioFormat::UnSignedInt
                                                 : QAudioFormat::SignedInt);
    return format;
}

bool isHeard(const WavFile::Format &file)
{
    const QAudioDeviceInfo device = QAudioDeviceInfo::defaultOutputDevice();
    return !device.isNull() && device.isFormatSupported(audioFormat(file));
}

} // namespace

Player::Player(QObject *parent)
    : QObject(parent)
{
    m_tick.setInterval(interval);
    connect(&m_tick, &QTimer::timeout, this, &Player::onTick);
}

Player::~Player() { stopOutput(); }

bool Player::load(const QString &path)
{
    pause();
    const bool isLoaded = m_source.load(path);
    m_isSilent = isLoaded && !isHeard(m_source.format());
    Q_EMIT moved(0);
    return isLoaded;
}

qint64 Player::duration() const { return timeOf(m_source.format().dataSize); }

// What the device has taken and not played yet is still to come.
qint64 Player::position() const
{
    const qint64 waiting = m_output ? m_output->bufferSize() - m_output->bytesFree() : 0;
    return timeOf(qMax<qint64>(0, m_source.place() - waiting));
}

bool Player::isPlaying() const { return m_tick.isActive(); }

bool Player::isSilent() const { return m_isSilent; }

void Player::play()
{
    if (isPlaying() || !m_source.isOpen())
        return;
    if (m_source.hasEnded())
        m_source.setPlace(0);
    m_tick.start();
    startOutput();
    Q_EMIT playingChanged(true);
}

void Player::pause()
{
    if (!isPlaying())
        return;
    m_tick.stop();
    const qint64 heard = position();
    stopOutput();
    m_source.setPlace(bytesOf(heard));
    Q_EMIT playingChanged(false);
}

void Player::seek(qint64 time)
{
    stopOutput();
    m_source.setPlace(bytesOf(time));
    if (isPlaying())
        startOutput();
    Q_EMIT moved(position());
}

void Player::setLoop(qint64 from, qint64 to)
{
    m_source.setLoop(bytesOf(from), bytesOf(to));
    if (to > from && (position() < from || position() >= to))
        seek(from);
}

void Player::startOutput()
{
    m_sinceTick.start();
    if (m_isSilent)
        return;
    m_output = std::make_unique<QAudioOutput>(audioFormat(m_source.format()));
    m_output->start(&m_source);
    if (m_output->state() == QAudio::StoppedState)
        goOnSilently();
}

void Player::stopOutput()
{
    if (m_output)
        m_output->stop();
    m_output.reset();
}

void Player::goOnSilently()
{
    stopOutput();
    m_isSilent = true;
    Q_EMIT silenced();
}

void Player::onTick()
{
    if (m_output && m_output->state() == QAudio::StoppedState)
        goOnSilently();
    if (m_isSilent)
        m_source.read(bytesOf(m_sinceTick.restart()));
    const bool isPlayed = m_isSilent || !m_output || m_output->state() == QAudio::IdleState;
    if (m_source.hasEnded() && isPlayed) {
        m_tick.stop();
        stopOutput();
        Q_EMIT moved(duration());
        Q_EMIT playingChanged(false);
        return;
    }
    Q_EMIT moved(position());
}

qint64 Player::bytesOf(qint64 time) const
{
    return time * m_source.format().sampleRate / 1000 * m_source.frameSize();
}

qint64 Player::timeOf(qint64 bytes) const
{
    const qint64 rate = qMax(1, m_source.format().sampleRate);
    return bytes / m_source.frameSize() * 1000 / rate;
}
