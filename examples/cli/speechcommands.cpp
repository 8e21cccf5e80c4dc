#include "speechcommands.h"

#include "options.h"
#include "progress.h"
#include "wavfile.h"

#include <QByteArray>

namespace {

TTSParams paramsFrom(const Options &options)
{
    TTSParams params;
    params.text = options.text;
    params.format = QStringLiteral("wav");
    params.sample_rate = options.sampleRate;
    params.voice = options.voice;
    params.volume = 50; // of 100; the rates are deviations from the voice's own
    params.pageFeature = QStringLiteral("vospeak");
    return params;
}

// Empty unless every character is right: Qt's decoder skips what it cannot read.
QByteArray decoded(const QByteArray &base64)
{
    const QByteArray bytes = QByteArray::fromBase64(base64);
    return bytes.toBase64() == base64 ? bytes : QByteArray();
}

} // namespace

ShortSpeech::ShortSpeech(const Options &options, VoNetworkIntf *service)
    : m_service(service)
    , m_params(paramsFrom(options))
    , m_anonymous(options.anonymous)
    , m_token(options.token)
    , m_output(options.output)
{
    connect(service, &VoNetworkIntf::signalTTSRet, this, &ShortSpeech::onAudio);
}

void ShortSpeech::start() { m_service->TTS(&m_params, m_anonymous, m_token); }

void ShortSpeech::onAudio(TTS_STATUS status, const QString &audioBase64)
{
    if (status != TTS_SUCCESS) {
        Q_EMIT failed(refusedByService());
        return;
    }
    const QByteArray audio = decoded(audioBase64.toLatin1());
    if (audio.isEmpty())
        Q_EMIT failed(QStringLiteral("the service sent no usable audio"));
    else if (!m_output.write(audio))
        Q_EMIT failed(QStringLiteral("the audio could not be written"));
    else
        Q_EMIT succeeded();
}

LongSpeech::LongSpeech(const Options &options, VoNetworkIntf *service, Progress *progress)
    : m_service(service)
    , m_progress(progress)
    , m_params(paramsFrom(options))
    , m_token(options.token)
    , m_output(options.output)
{
    connect(service, &VoNetworkIntf::signalLongTTSTask, this, &LongSpeech::onTask);
    connect(service, &VoNetworkIntf::signalGetLongTTSResult, this, &LongSpeech::onStatus);
    connect(&m_poll, &Poll::due, this, &LongSpeech::ask);
}

void LongSpeech::start() { m_service->LongTTSTask(&m_params, m_token); }

void LongSpeech::onTask(LONG_TTS_STATUS status, const QString &taskId)
{
    if (status != LONG_TTS_SUCCESS || taskId.isEmpty()) {
        Q_EMIT failed(refusedByService());
        return;
    }
    m_taskId = taskId;
    m_progress->show(QStringLiteral("queued"));
    m_poll.next();
}

void LongSpeech::ask() { m_service->LongTTSStatus(m_taskId, m_token); }

void LongSpeech::onStatus(LONG_TTS_STATUS status, const QString &, const QString &,
                          const QString &audioUrl)
{
    switch (status) {
    case LONG_TTS_PROCESSING:
        m_progress->show(QStringLiteral("queued or running, %1 s").arg(m_poll.seconds()));
        m_poll.next();
        break;
    case LONG_TTS_SUCCESS:
        m_progress->show(QStringLiteral("fetching the audio"));
        // From the event loop and not from inside the service's signal: fetching waits in a nested
        // loop, and the reply that this status came with should be over by then.
        QMetaObject::invokeMethod(
            this, [this, audioUrl] { fetch(audioUrl); }, Qt::QueuedConnection);
        break;
    case LONG_TTS_FAILED:
        Q_EMIT failed(refusedByService());
        break;
    }
}

void LongSpeech::fetch(const QString &address)
{
    if (m_output.take([this, &address](const QString &path) { return fetchInto(address, path); }))
        Q_EMIT succeeded();
    else
        Q_EMIT failed(QStringLiteral("the audio could not be fetched or written "
                                     "(run with --verbose to see why)"));
}

// The service object does not notice when a disk fills up while it writes.
bool LongSpeech::fetchInto(const QString &address, const QString &path)
{
    return m_service->DownloadLongTTSRet(address, path) && !WavFile::isCutShort(path);
}
