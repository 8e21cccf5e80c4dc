#include "recognitioncommands.h"

#include "progress.h"
#include "tokenkeeper.h"

namespace {

const QLatin1String pageFeature("vospeak");

} // namespace

ShortRecognition::ShortRecognition(const Options &options, const Tools &tools)
    : Recognition(options, tools)
{
    connect(tools.service, &VoNetworkIntf::signalShortSTT, this, &ShortRecognition::onText);
}

void ShortRecognition::recognize(const QString &address)
{
    progress()->show(QStringLiteral("recognising"));
    tokens()->give(
        [this, address](qint64 token) { service()->ShortSTT(address, token, pageFeature); });
}

void ShortRecognition::onText(SHORT_STT_STATUS status, const QString &text)
{
    if (status == SHORT_STT_SUCCESS)
        finishWith(text);
    else
        Q_EMIT failed(refusedByService());
}

LongRecognition::LongRecognition(const Options &options, const Tools &tools)
    : Recognition(options, tools)
{
    connect(tools.service, &VoNetworkIntf::signalCreateSTTTask, this, &LongRecognition::onTask);
    connect(tools.service, &VoNetworkIntf::signalGetSTTResult, this, &LongRecognition::onStatus);
    connect(&m_poll, &Poll::due, this, &LongRecognition::ask);
}

void LongRecognition::recognize(const QString &address)
{
    tokens()->give(
        [this, address](qint64 token) { service()->CreateSTTTask(address, token, pageFeature); });
}

void LongRecognition::onTask(STT_STATUS status, const QString &taskId)
{
    if (status != STT_SUCCESS || taskId.isEmpty()) {
        Q_EMIT failed(refusedByService());
        return;
    }
    m_taskId = taskId;
    progress()->show(QStringLiteral("queued"));
    m_poll.next();
}

void LongRecognition::ask()
{
    tokens()->give([this](qint64 token) { service()->GetSTTTaskResult(m_taskId, token); });
}

void LongRecognition::onStatus(STT_STATUS status, const QString &, const QString &,
                               const QString &text)
{
    switch (status) {
    case STT_PROCESSING:
        progress()->show(QStringLiteral("queued or running, %1 s").arg(m_poll.seconds()));
        m_poll.next();
        break;
    case STT_SUCCESS:
        finishWith(text);
        break;
    case STT_FAILED:
        Q_EMIT failed(refusedByService());
        break;
    }
}
