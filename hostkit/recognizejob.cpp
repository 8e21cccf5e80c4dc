#include "hostkit/recognizejob.h"

#include "hostkit/hostkit.h"
#include "hostkit/inputfile.h"
#include "hostkit/limits.h"
#include "hostkit/servicelease.h"
#include "hostkit/uploader.h"
#include "hostkit/wavfile.h"

#include <QFileInfo>

namespace {

using Kind = Reason::Kind;

// Seconds; negative: unknown.
double durationOf(const QString &recording)
{
    return InputFile::isAddress(recording) ? -1 : WavFile::duration(recording);
}

bool isLong(const QString &recording, Job::Form form)
{
    if (form != Job::Form::ByLength)
        return form == Job::Form::Long;
    const double duration = durationOf(recording);
    return duration < 0 || duration > Limits::shortRecording;
}

} // namespace

RecognizeJob::RecognizeJob(HostKit *kit, const QString &recording, Form form, QObject *parent)
    : TaskJob(kit, parent)
    , m_recording(recording)
    , m_form(form)
{
}

Reason RecognizeJob::problem(const QString &recording, Form form)
{
    if (InputFile::isAddress(recording))
        return {};
    if (const QString problem = InputFile::problem(recording); !problem.isEmpty())
        return {Kind::File, problem};
    if (QFileInfo(recording).size() > Limits::recordingSize)
        return {Kind::Unusable,
                tr("the recording is too large (%1 MiB)").arg(Limits::recordingSize >> 20)};
    const double duration = durationOf(recording);
    if (duration > Limits::longRecording)
        return {Kind::Unusable, tr("the recording is too long (%1 s)").arg(Limits::longRecording)};
    if (form == Form::Short && duration > Limits::shortRecording)
        return {Kind::TooLong,
                tr("the recording is too long for one answer (%1 s)").arg(Limits::shortRecording)};
    return {};
}

// The scheme of an address is put into small letters: a service may compare it letter by letter.
void RecognizeJob::beginAnew()
{
    if (const Reason reason = problem(m_recording, m_form); !reason.isNone())
        fail(reason);
    else if (InputFile::isAddress(m_recording))
        recognize(QLatin1String("https") + m_recording.mid(m_recording.indexOf(QLatin1Char(':'))));
    else
        upload();
}

void RecognizeJob::upload()
{
    auto *uploader = new Uploader(service(), work());
    connect(uploader, &Uploader::sent, work(), [this](qint64 done, qint64 total) {
        Q_EMIT progressed(Stage::Uploading, done, total);
    });
    connect(uploader, &Uploader::uploaded, work(),
            [this](const QString &address) { recognize(address); });
    connect(uploader, &Uploader::refused, work(), [this] { failAsTold(); });
    connect(uploader, &Uploader::failed, work(), [this](const Reason &reason) { fail(reason); });
    uploader->upload(m_recording);
}

void RecognizeJob::recognize(const QString &address)
{
    withToken([this, address](qint64 token) {
        if (isLong(m_recording, m_form))
            recognizeLong(address, token);
        else
            recognizeShort(address, token);
    });
}

void RecognizeJob::recognizeShort(const QString &address, qint64 token)
{
    service()->ask(
        &VoNetworkIntf::signalShortSTT,
        [=](VoNetworkIntf *service) { service->ShortSTT(address, token, kit()->label()); },
        [this](SHORT_STT_STATUS status, const QString &text) {
            if (status == SHORT_STT_SUCCESS)
                onResult(text);
            else
                failAsTold();
        });
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

void RecognizeJob::recognizeLong(const QString &address, qint64 token)
{
    service()->ask(
        &VoNetworkIntf::signalCreateSTTTask,
        [=](VoNetworkIntf *service) { service->CreateSTTTask(address, token, kit()->label()); },
        [this](STT_STATUS status, const QString &id) { onCreated(status, id); });
    Q_EMIT progressed(Stage::Asking, 0, 0);
}

void RecognizeJob::askAfter(const QString &id, qint64 token)
{
    service()->ask(
        &VoNetworkIntf::signalGetSTTResult,
        [=](VoNetworkIntf *service) { service->GetSTTTaskResult(id, token); },
        [this](STT_STATUS status, const QString &id, const QString &, const QString &text) {
            onStatus(status, id, text);
        });
}

void RecognizeJob::onResult(const QString &text)
{
    if (conclude())
        Q_EMIT succeeded(text);
}
