#include "tests/network/answers.h"

#include <QSignalSpy>

namespace {

QString text(const QString &value) { return QStringLiteral("\"%1\"").arg(value); }

} // namespace

Answers::Answers(VoNetworkIntf *service)
{
    connect(service, &VoNetworkIntf::signalGetOssSign, this, [this](OSS_SIGN_INFO *info) {
        if (!info)
            return note("signalGetOssSign", {QStringLiteral("null")});
        note("signalGetOssSign", {text(info->AccessKeyId), text(info->AccessKeySecret),
                                  text(info->endpoint), text(info->bucketName), text(info->dir),
                                  text(info->SecurityToken), text(info->bucketRegion)});
        delete info;
    });
    connect(service, &VoNetworkIntf::signalShortSTT, this,
            [this](SHORT_STT_STATUS status, const QString &spoken) {
                note("signalShortSTT", {QString::number(status), text(spoken)});
            });
    connect(service, &VoNetworkIntf::signalCreateSTTTask, this,
            [this](STT_STATUS status, const QString &taskId) {
                note("signalCreateSTTTask", {QString::number(status), text(taskId)});
            });
    connect(service, &VoNetworkIntf::signalGetSTTResult, this,
            [this](STT_STATUS status, const QString &taskId, const QString &requestId,
                   const QString &spoken) {
                note("signalGetSTTResult",
                     {QString::number(status), text(taskId), text(requestId), text(spoken)});
            });
    connect(service, &VoNetworkIntf::signalTTSRet, this,
            [this](TTS_STATUS status, const QString &audio) {
                note("signalTTSRet", {QString::number(status), text(audio)});
            });
    connect(service, &VoNetworkIntf::signalLongTTSTask, this,
            [this](LONG_TTS_STATUS status, const QString &taskId) {
                note("signalLongTTSTask", {QString::number(status), text(taskId)});
            });
    connect(service, &VoNetworkIntf::signalGetLongTTSResult, this,
            [this](LONG_TTS_STATUS status, const QString &taskId, const QString &requestId,
                   const QString &address) {
                note("signalGetLongTTSResult",
                     {QString::number(status), text(taskId), text(requestId), text(address)});
            });
}

QStringList Answers::calls() const { return m_calls; }

bool Answers::waitFor(int count)
{
    QSignalSpy arrivals(this, &Answers::arrived);
    while (m_calls.size() < count) {
        if (!arrivals.wait(30000))
            return false;
    }
    return true;
}

void Answers::note(const char *signal, const QStringList &values)
{
    m_calls.append(QLatin1String(signal) + QLatin1Char('(') + values.join(QStringLiteral(", "))
                   + QLatin1Char(')'));
    Q_EMIT arrived();
}
