#include "tests/desktop/soundcard.h"

#include <QAudioDeviceInfo>
#include <QAudioSystemPlugin>
#include <QCoreApplication>
#include <QPointer>
#include <QTimer>
#include <QtEndian>
#include <QtPlugin>

#include <functional>

namespace {

constexpr int period = 10; // ms
constexpr qint16 tone = 16384;

/// Whether the card is there. Who uses it hears when it goes.
class Socket : public QObject
{
    Q_OBJECT

public:
    static Socket &only()
    {
        static Socket socket;
        return socket;
    }

    bool hasCard = false;

Q_SIGNALS:
    void pulledOut();
};

/// What is the same for both directions: every period a piece is moved.
template <typename Base>
class Stream : public Base
{
public:
    Stream()
    {
        QObject::connect(&m_clock, &QTimer::timeout, this, [this] {
            QByteArray piece(m_format.bytesForDuration(period * 1000LL), '\0');
            if (m_device)
                change(move(&piece) ? QAudio::ActiveState : QAudio::IdleState);
        });
        QObject::connect(&Socket::only(), &Socket::pulledOut, this, [this] {
            m_error = QAudio::IOError;
            halt();
        });
    }

    void start(QIODevice *device) override
    {
        m_device = device;
        m_error = QAudio::NoError;
        m_clock.start(period);
        change(QAudio::ActiveState);
    }
    QIODevice *start() override { return nullptr; }
    void stop() override { halt(); }
    void reset() override { halt(); }
    void suspend() override {}
    void resume() override {}
    int periodSize() const override { return m_format.bytesForDuration(period * 1000LL); }
    void setBufferSize(int) override {}
    int bufferSize() const override { return periodSize(); }
    void setNotifyInterval(int) override {}
    int notifyInterval() const override { return period; }
    qint64 processedUSecs() const override { return 0; }
    qint64 elapsedUSecs() const override { return 0; }
    QAudio::Error error() const override { return m_error; }
    QAudio::State state() const override { return m_state; }
    void setFormat(const QAudioFormat &format) override { m_format = format; }
    QAudioFormat format() const override { return m_format; }

protected:
    /// False: there was nothing to be moved.
    virtual bool move(QByteArray *piece) = 0;

    QPointer<QIODevice> m_device;

private:
    void change(QAudio::State state)
    {
        if (m_state == state)
            return;
        m_state = state;
        Q_EMIT this->stateChanged(state);
    }

    void halt()
    {
        m_clock.stop();
        change(QAudio::StoppedState);
    }

    QTimer m_clock;
    QAudioFormat m_format;
    QAudio::State m_state = QAudio::StoppedState;
    QAudio::Error m_error = QAudio::NoError;
};

class Microphone : public Stream<QAbstractAudioInput>
{
public:
    int bytesReady() const override { return 0; }
    void setVolume(qreal) override {}
    qreal volume() const override { return 1; }

protected:
    bool move(QByteArray *piece) override
    {
        for (int i = 0; i + 1 < piece->size(); i += 2)
            qToLittleEndian(tone, piece->data() + i);
        return m_device->write(*piece) > 0;
    }
};

class Loudspeaker : public Stream<QAbstractAudioOutput>
{
public:
    int bytesFree() const override { return bufferSize(); }

protected:
    bool move(QByteArray *piece) override
    {
        return m_device->read(piece->data(), piece->size()) > 0;
    }
};

/// It takes every format.
class Description : public QAbstractAudioDeviceInfo
{
public:
    QAudioFormat preferredFormat() const override { return {}; }
    bool isFormatSupported(const QAudioFormat &) const override { return true; }
    QString deviceName() const override { return QStringLiteral("card"); }
    QStringList supportedCodecs() override { return {}; }
    QList<int> supportedSampleRates() override { return {}; }
    QList<int> supportedChannelCounts() override { return {}; }
    QList<int> supportedSampleSizes() override { return {}; }
    QList<QAudioFormat::Endian> supportedByteOrders() override { return {}; }
    QList<QAudioFormat::SampleType> supportedSampleTypes() override { return {}; }
};

} // namespace

class CardPlugin : public QAudioSystemPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QAudioSystemFactoryInterface_iid FILE "soundcard.json")

public:
    QList<QByteArray> availableDevices(QAudio::Mode) const override
    {
        return Socket::only().hasCard ? QList<QByteArray>{"card"} : QList<QByteArray>();
    }
    QAbstractAudioInput *createInput(const QByteArray &) override { return new Microphone; }
    QAbstractAudioOutput *createOutput(const QByteArray &) override { return new Loudspeaker; }
    QAbstractAudioDeviceInfo *createDeviceInfo(const QByteArray &, QAudio::Mode) override
    {
        return new Description;
    }
};

Q_IMPORT_PLUGIN(CardPlugin)

// Without folders of plugins Qt has those that are in the program.
void SoundCard::install() { QCoreApplication::setLibraryPaths({}); }

void SoundCard::plugIn() { Socket::only().hasCard = true; }

void SoundCard::pullOut()
{
    Socket::only().hasCard = false;
    Q_EMIT Socket::only().pulledOut();
}

#include "soundcard.moc"
