#include "audio/recorder.h"

#include <QAudioDeviceInfo>
#include <QAudioFormat>
#include <QAudioInput>
#include <QDataStream>
#include <QDateTime>
#include <QDir>
#include <QtEndian>

namespace {

constexpr quint32 rate = 16000; // samples a second
constexpr quint16 sampleSize = 2;
constexpr qint64 headSize = 44; // bytes

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

QByteArray head(quint32 dataSize)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(dataSize + headSize - 8);
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(1) << rate << rate * sampleSize << sampleSize
           << quint16(sampleSize * 8);
    stream.writeRawData("data", 4);
    stream << dataSize;
    return bytes;
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

QString Recorder::start(const QString &folder)
{
    m_problem.clear();
    if (QString problem = openNewFile(folder); !problem.isEmpty())
        return problem;
    open(QIODevice::WriteOnly | QIODevice::Unbuffered);
    m_input = std::make_unique<QAudioInput>(audioFormat());
    connect(m_input.get(), &QAudioInput::stateChanged, this, [this](QAudio::State state) {
        if (state == QAudio::StoppedState && m_input->error() != QAudio::NoError)
            giveUp(tr("the microphone is gone"));
    });
    m_input->start(this);
    if (m_input->error() == QAudio::NoError)
        return {};
    stop();
    m_file.remove();
    return tr("the microphone cannot be used");
}

void Recorder::stop()
{
    if (!m_input)
        return;
    m_input->stop();
    m_input.reset();
    close();
    m_file.close();
    Q_EMIT level(0);
}

bool Recorder::isRecording() const { return bool(m_input); }

QString Recorder::path() const { return m_file.fileName(); }

qint64 Recorder::readData(char *, qint64) { return -1; }

qint64 Recorder::writeData(const char *data, qint64 size)
{
    int loudest = 0;
    for (qint64 i = 0; i + 1 < size; i += sampleSize)
        loudest = qMax(loudest, qAbs(int(qFromLittleEndian<qint16>(data + i))));
    Q_EMIT level(loudest * 100 / 32768);
    // A disk that is full takes a part first, and says so when it is given the rest.
    for (qint64 written = 0, part = 1; written < size && part > 0; written += part) {
        part = m_file.write(data + written, size - written);
        if (part <= 0)
            giveUp(m_file.errorString());
    }
    if (!writeHead())
        giveUp(m_file.errorString());
    return size;
}

// Whoever else makes a file at this moment, which another window may, gets one of another name.
QString Recorder::openNewFile(const QString &folder)
{
    if (!QDir().mkpath(folder))
        return tr("the folder %1 cannot be made").arg(QDir::toNativeSeparators(folder));
    const QString time = QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd-hhmmss"));
    for (int number = 1;; ++number) {
        const QString name =
            number == 1 ? time : QStringLiteral("%1-%2").arg(time, QString::number(number));
        m_file.setFileName(QDir(folder).filePath(name + QStringLiteral(".wav")));
        if (m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered))
            break;
        if (!m_file.exists())
            return m_file.errorString();
    }
    if (writeHead())
        return {};
    QString problem = m_file.errorString();
    m_file.remove();
    return problem;
}

// The head tells of what the file has now. A disk that is full takes it: its place is there.
bool Recorder::writeHead()
{
    const qint64 size = qMax(headSize, m_file.size());
    return m_file.seek(0) && m_file.write(head(quint32(size - headSize))) == headSize
           && m_file.seek(size);
}

// Later, because the microphone is in the middle of a call.
void Recorder::giveUp(const QString &why)
{
    if (!m_problem.isEmpty())
        return;
    m_problem = why;
    const auto end = [this] {
        if (!isRecording() || m_problem.isEmpty())
            return; // the user was faster
        stop();
        Q_EMIT failed(m_problem);
    };
    QMetaObject::invokeMethod(this, end, Qt::QueuedConnection);
}
