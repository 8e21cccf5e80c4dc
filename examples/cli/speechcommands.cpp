#include "speechcommands.h"

#include "hostkit/failurereason.h"
#include "hostkit/serveraddress.h"
#include "hostkit/wavfile.h"
#include "options.h"
#include "progress.h"
#include "tokenkeeper.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>

namespace {

TTSParams paramsFrom(const Options &options)
{
    TTSParams params;
    params.text = options.text;
    params.format = QStringLiteral("wav");
    params.sample_rate = options.sampleRate;
    params.voice = options.voice;
    params.volume = 50; // of 100; the rates stay at 0, which is the voice's own
    params.pageFeature = QStringLiteral("vospeak");
    return params;
}

// Empty when @p base64 has any other character: Qt's decoder would skip it.
QByteArray decoded(const QByteArray &base64)
{
    const QByteArray bytes = QByteArray::fromBase64(base64);
    return bytes.toBase64() == base64 ? bytes : QByteArray();
}

// File systems give out room in blocks. Where there is none for a write of more than the largest
// block, the disk may have been full before.
constexpr int largestBlock = 65536; // bytes

// Whether the disk takes more behind the contents of the file @p path, which are left as they are.
bool hasRoomBehind(const QString &path)
{
    QFile file(path);
    const qint64 size = file.size();
    const QByteArray more(largestBlock, 'x');
    return file.open(QIODevice::Append | QIODevice::Unbuffered) && file.write(more) == more.size()
           && file.resize(size);
}

} // namespace

Speech::Speech(const Options &options, const Tools &tools)
    : Command(options, tools)
    , m_params(paramsFrom(options))
    , m_path(options.output)
    , m_output(options.output)
{
}

Speech::~Speech() = default;

TTSParams *Speech::params() { return &m_params; }

const OutputFile &Speech::output() const { return m_output; }

void Speech::finishWithFile()
{
    finish({},
           {{QStringLiteral("file"), m_path}, {QStringLiteral("bytes"), QFileInfo(m_path).size()}});
}

ShortSpeech::ShortSpeech(const Options &options, const Tools &tools)
    : Speech(options, tools)
    , m_anonymous(options.anonymous)
{
    connect(tools.service, &VoNetworkIntf::signalTTSRet, this, &ShortSpeech::onAudio);
}

void ShortSpeech::start()
{
    tokens()->give([this](qint64 token) { service()->TTS(params(), m_anonymous, token); });
}

void ShortSpeech::onAudio(TTS_STATUS status, const QString &audioBase64)
{
    if (status != TTS_SUCCESS) {
        Q_EMIT failed(refusedByService());
        return;
    }
    const QByteArray audio = decoded(audioBase64.toLatin1());
    if (audio.isEmpty())
        Q_EMIT failed(QStringLiteral("the service sent no usable audio"));
    else if (const QString problem = output().write(audio); !problem.isEmpty())
        Q_EMIT failed(QStringLiteral("the audio could not be written: %1").arg(problem));
    else
        finishWithFile();
}

// The audio is fetched from the event loop and not from inside the service's signal: fetching waits
// in a nested loop, and the reply that brought the status has to end before that.
LongSpeech::LongSpeech(const Options &options, const Tools &tools)
    : Speech(options, tools)
    , m_task(tools)
{
    connect(tools.service, &VoNetworkIntf::signalLongTTSTask, &m_task, &Task::onCreated);
    connect(tools.service, &VoNetworkIntf::signalGetLongTTSResult, &m_task, &Task::onStatus);
    connect(&m_task, &Task::due, tools.service, &VoNetworkIntf::LongTTSStatus);
    connect(&m_task, &Task::succeeded, this, &LongSpeech::fetch, Qt::QueuedConnection);
    connect(&m_task, &Task::failed, this, &Command::failed);
}

void LongSpeech::start()
{
    tokens()->give([this](qint64 token) { service()->LongTTSTask(params(), token); });
}

void LongSpeech::fetch(const QString &address)
{
    if (!ServerAddress::isUsable(address)) {
        Q_EMIT failed(QStringLiteral("the service sent no usable address of the audio"));
        return;
    }
    progress()->show(QStringLiteral("fetching the audio"));
    if (output().take([this, &address](const QString &path) { return fetchInto(address, path); }))
        finishWithFile();
    else
        Q_EMIT failed(FailureReason::orElse(QStringLiteral(
            "the audio could not be fetched or written (run with --verbose to see why)")));
}

// The service object does not notice a disk that is full after a part of the file. The file is
// refused when it is shorter than it says, and when the disk is all but full afterwards.
bool LongSpeech::fetchInto(const QString &address, const QString &path)
{
    return service()->DownloadLongTTSRet(address, path) && !WavFile::isCutShort(path)
           && hasRoomBehind(path);
}
