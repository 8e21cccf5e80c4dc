#include "tests/network/answers.h"

#include "tests/network/records.h"
#include "tests/support/patience.h"

#include <QDir>
#include <QSignalSpy>

namespace {

template <typename Record>
QString recordCall(const char *signal, const Record *record)
{
    return QLatin1String(signal) + (record ? written(*record) : QStringLiteral("(null)"));
}

} // namespace

Answers::Answers(VoNetworkIntf *service)
{
    connect(service, &VoNetworkIntf::signalGetOssSign, this, [this](OSS_SIGN_INFO *info) {
        note(recordCall("signalGetOssSign", info));
        delete info;
    });
    connectSpeech(service);
    connectSignIn(service);
}

Answers::~Answers() { qDeleteAll(m_codes); }

void Answers::connectSpeech(VoNetworkIntf *service)
{
    connect(service, &VoNetworkIntf::signalShortSTT, this,
            [this](SHORT_STT_STATUS status, const QString &spoken) {
                note("signalShortSTT", {QString::number(status), written(spoken)});
            });
    connect(service, &VoNetworkIntf::signalCreateSTTTask, this,
            [this](STT_STATUS status, const QString &taskId) {
                note("signalCreateSTTTask", {QString::number(status), written(taskId)});
            });
    connect(service, &VoNetworkIntf::signalGetSTTResult, this,
            [this](STT_STATUS status, const QString &taskId, const QString &requestId,
                   const QString &spoken) {
                note("signalGetSTTResult", {QString::number(status), written(taskId),
                                            written(requestId), written(spoken)});
            });
    connect(service, &VoNetworkIntf::signalTTSRet, this,
            [this](TTS_STATUS status, const QString &audio) {
                note("signalTTSRet", {QString::number(status), written(audio)});
            });
    connect(service, &VoNetworkIntf::signalLongTTSTask, this,
            [this](LONG_TTS_STATUS status, const QString &taskId) {
                note("signalLongTTSTask", {QString::number(status), written(taskId)});
            });
    connect(service, &VoNetworkIntf::signalGetLongTTSResult, this,
            [this](LONG_TTS_STATUS status, const QString &taskId, const QString &requestId,
                   const QString &address) {
                note("signalGetLongTTSResult", {QString::number(status), written(taskId),
                                                written(requestId), written(address)});
            });
}

void Answers::connectSignIn(VoNetworkIntf *service)
{
    connect(service, &VoNetworkIntf::signalGetLoginQrCodeEnd, this, [this](LoginQrCode *code) {
        if (code && !m_codes.contains(code))
            m_codes.append(code);
        note(recordCall("signalGetLoginQrCodeEnd", code));
    });
    connect(service, &VoNetworkIntf::signalGetLoginQrCodeStatusEnd, this, [this](UserInfo *user) {
        note(recordCall("signalGetLoginQrCodeStatusEnd", user));
        delete user;
    });
    connect(service, &VoNetworkIntf::signalSendSmsEnd, this,
            [this] { note("signalSendSmsEnd", QStringList()); });
    connect(service, &VoNetworkIntf::signalSmsLoginEnd, this, [this](UserInfo *user) {
        note(recordCall("signalSmsLoginEnd", user));
        delete user;
    });
    connect(service, &VoNetworkIntf::signalRefreshTokenEnd, this,
            [this](qlonglong token, const QDateTime &expires) {
                note("signalRefreshTokenEnd", {QString::number(token), dateText(expires)});
            });
}

QStringList Answers::calls() const { return m_calls; }

bool Answers::waitFor(int count)
{
    QSignalSpy arrivals(this, &Answers::arrived);
    while (m_calls.size() < count) {
        if (!arrivals.wait(patienceMs))
            return false;
    }
    return true;
}

QList<LoginQrCode *> Answers::codes() const { return m_codes; }

QString Answers::dateText(const QDateTime &date) const
{
    const bool isNow = date.isValid() && date.timeSpec() == Qt::LocalTime && m_start <= date
                       && date <= QDateTime::currentDateTime();
    return isNow ? QStringLiteral("now") : written(date);
}

void Answers::note(const char *signal, const QStringList &values)
{
    note(QLatin1String(signal) + inBrackets(values));
}

void Answers::note(const QString &call)
{
    m_calls.append(QString(call).replace(QDir::tempPath(), QStringLiteral("<temporary>")));
    Q_EMIT arrived();
}
