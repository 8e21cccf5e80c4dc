#include "audio/recorder.h"

#include <QAudioDeviceInfo>
#include <QAudioFormat>
#include <QAudioInput>
#include <QDataStream>
#include <QtEndian>

namespace {

constexpr quint32 rate = 16000; // samples a second
constexpr quint16 sampleSize = 2;
constexpr quint32 headSize = 44; // bytes

QAudioFormat audioFormat()
{
    QAudioFormat format;
    format.setCodec(QStringLiteral("audio/pcm"));
    format.setByteOrder(QAudioFormat::LittleEndian);
    format.setSampleRate(int(rate));
    format.setChannelCount(1);
    format.setSampleSize(sampleSize * 8);
    format.setSampleType(QAudioFormat::SignedInt);
    return format;
}

} // namespace

Recorder::Recorder(QObject *parent)
    : QIODevice(parent)
{
}

Recorder::~Recorder() { stop(); }

bool Recorder::isPossible()
{
    const QAudioDeviceInfo device = QAudioDeviceInfo::defaultInputDevice();
    return !device.isNull() && device.isFormatSupported(audioFormat());
}

QString Recorder::start(const QString &path)
{
    m_problem.clear();
    m_file.setFileName(path);
    if (!m_file.open(QIODevice::WriteOnly) || !writeHead(0))
        return m_file.errorString();
    open(QIODevice::WriteOnly);
    m_input = std::make_unique<QAudioInput>(audioFormat());
    m_input->start(this);
    return m_input->error() == QAudio::NoError ? QString() : tr("the microphone cannot be used");
}

QString Recorder::stop()
{
    if (!m_input)
        return {};
    m_input->stop();
    m_input.reset();
    close();
    const qint64 size = m_file.size() - headSize;
    if (!m_file.seek(0) || !writeHead(quint32(size)) || !m_file.flush())
        m_problem = m_file.errorString();
    m_file.close();
    Q_EMIT level(0);
    return m_problem;
}

bool Recorder::isRecording() const { return bool(m_input); }

qint64 Recorder::readData(char *, qint64) { return -1; }

qint64 Recorder::writeData(const char *data, qint64 size)
{
    int loudest = 0;
    for (qint64 i = 0; i + 1 < size; i += sampleSize)
        loudest = qMax(loudest, qAbs(int(qFromLittleEndian<qint16>(data + i))));
    Q_EMIT level(loudest * 100 / 32768);
    if (m_file.write(data, size) != size)
        m_problem = m_file.errorString();
    return size;
}

bool Recorder::writeHead(quint32 dataSize)
{
    QDataStream head(&m_file);
    head.setByteOrder(QDataStream::LittleEndian);
    head.writeRawData("RIFF", 4);
    head << quint32(dataSize + headSize - 8);
    head.writeRawData("WAVEfmt ", 8);
    head << quint32(16) << quint16(1) << quint16(1) << rate << rate * sampleSize << sampleSize
         << quint16(sampleSize * 8);
    head.writeRawData("data", 4);
    head << dataSize;
    return head.status() == QDataStream::Ok;
}
