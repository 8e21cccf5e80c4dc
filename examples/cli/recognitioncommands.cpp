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
    , m_task(tools)
{
    connect(tools.service, &VoNetworkIntf::signalCreateSTTTask, &m_task, &Task::onCreated);
    connect(tools.service, &VoNetworkIntf::signalGetSTTResult, &m_task, &Task::onStatus);
    connect(&m_task, &Task::due, tools.service, &VoNetworkIntf::GetSTTTaskResult);
    connect(&m_task, &Task::succeeded, this, &LongRecognition::finishWith);
    connect(&m_task, &Task::failed, this, &Command::failed);
}

void LongRecognition::recognize(const QString &address)
{
    tokens()->give(
        [this, address](qint64 token) { service()->CreateSTTTask(address, token, pageFeature); });
}
