#include "hostkit/speakjob.h"

#include "hostkit/hostkit.h"
#include "hostkit/limits.h"
#include "hostkit/serveraddress.h"
#include "hostkit/servicelease.h"
#include "hostkit/wavfile.h"

#include <QByteArray>
#include <QFile>
#include <QFileInfo>
#include <QVector>

#include <memory>

namespace {

using Kind = Reason::Kind;

int characters(const QString &text) { return text.toUcs4().size(); }

bool isLong(const Speech &speech)
{
    const bool mayBe = speech.form == Job::Form::ByLength && !speech.isAnonymous;
    return speech.form == Job::Form::Long || (mayBe && characters(speech.text) > Limits::shortText);
}

int longest(const Speech &speech)
{
    if (speech.isAnonymous)
        return Limits::anonymousText;
    return isLong(speech) ? Limits::longText : Limits::shortText;
}

TTSParams paramsOf(const Speech &speech, const QString &label)
{
    TTSParams params;
    params.text = speech.text;
    params.format = speech.format;
    params.sample_rate = speech.sampleRate;
    params.voice = speech.voice;
    params.volume = speech.volume;
    params.speech_rate = speech.speed;
    params.pitch_rate = speech.pitch;
    params.pageFeature = label;
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

// The service object does not notice a disk that is full after a part of the file. The file is
// refused when it is shorter than it says, and when the disk is all but full afterwards.
bool fetch(VoNetworkIntf *service, const QString &address, const QString &path)
{
    return service->DownloadLongTTSRet(address, path) && !WavFile::isCutShort(path)
           && hasRoomBehind(path);
}

} // namespace

SpeakJob::SpeakJob(HostKit *kit, const Speech &speech, const QString &path, QObject *parent)
    : TaskJob(kit, parent)
    , m_speech(speech)
    , m_path(path)
    , m_output(path)
{
}

Reason SpeakJob::problem(const Speech &speech)
{
    if (speech.text.trimmed().isEmpty())
        return {Kind::Unusable, tr("there is nothing to say in the text")};
    if (speech.isAnonymous && speech.form == Form::Long)
        return {Kind::SignIn, tr("long texts are spoken for users only; sign in")};
    const int most = longest(speech);
    if (characters(speech.text) <= most)
        return {};
    if (speech.isAnonymous)
        return {Kind::Unusable,
                tr("the text is too long without signing in (%1 characters)").arg(most)};
    if (isLong(speech))
        return {Kind::Unusable, tr("the text is too long (%1 characters)").arg(most)};
    return {Kind::TooLong, tr("the text is too long for one answer (%1 characters)").arg(most)};
}

void SpeakJob::beginAnew()
{
    if (const Reason reason = problem(m_speech); !reason.isNone())
        return fail(reason);
    if (m_speech.isAnonymous)
        speakShort(0);
    else if (isLong(m_speech))
        withToken([this](qint64 token) { speakLong(token); });
    else
        withToken([this](qint64 token) { speakShort(token); });
}

void SpeakJob::speakShort(qint64 token)
{
    service()->ask(
        &VoNetworkIntf::signalTTSRet,
        [this, token](VoNetworkIntf *service) {
            TTSParams params = paramsOf(m_speech, kit()->label());
            service->TTS(&params, m_speech.isAnonymous, token);
        },
        [this](TTS_STATUS status, const QString &base64) { onAudio(status, base64); });
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

void SpeakJob::speakLong(qint64 token)
{
    service()->ask(
        &VoNetworkIntf::signalLongTTSTask,
        [this, token](VoNetworkIntf *service) {
            TTSParams params = paramsOf(m_speech, kit()->label());
            service->LongTTSTask(&params, token);
        },
        [this](LONG_TTS_STATUS status, const QString &id) { onCreated(status, id); });
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

void SpeakJob::askAfter(const QString &id, qint64 token)
{
    service()->ask(
        &VoNetworkIntf::signalGetLongTTSResult,
        [=](VoNetworkIntf *service) { service->LongTTSStatus(id, token); },
        [this](LONG_TTS_STATUS status, const QString &id, const QString &, const QString &address) {
            onStatus(status, id, address);
        });
}

void SpeakJob::onAudio(int status, const QString &base64)
{
    if (status != TTS_SUCCESS)
        return failAsTold();
    const QByteArray audio = decoded(base64.toLatin1());
    if (audio.isEmpty())
        fail({Kind::BadAnswer, tr("the service sent no usable audio")});
    else if (const QString problem = m_output.write(audio); !problem.isEmpty())
        fail({Kind::File, tr("the audio could not be written: %1").arg(problem)});
    else
        succeed();
}

void SpeakJob::onResult(const QString &address)
{
    if (!ServerAddress::isUsable(address))
        return fail({Kind::BadAnswer, tr("the service sent no usable address of the audio")});
    const auto isWritten = std::make_shared<bool>(false);
    const OutputFile output = m_output;
    runWaiting(
        [=](VoNetworkIntf *service) {
            *isWritten =
                output.take([=](const QString &path) { return fetch(service, address, path); });
        },
        [=](const Reason &reason) {
            if (*isWritten)
                succeed();
            else if (reason.isNone())
                fail({Kind::File, tr("the audio could not be fetched or written")});
            else
                fail(reason);
        });
    Q_EMIT progressed(Stage::Fetching, 0, 0);
}

void SpeakJob::succeed()
{
    const QString path = m_path;
    if (conclude())
        Q_EMIT succeeded(path, QFileInfo(path).size());
}
