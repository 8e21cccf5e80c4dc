#include "network/serviceenvelope.h"
#include "network/servicelog.h"
#include "network/serviceoperation.h"
#include "network/vonetworker.h"

#include <QDebug>
#include <QJsonObject>

namespace {

// The log line of a refusal has the message alone, without the code.
constexpr ServiceOperation getOssSign{HttpMethod::Get,
                                      convertServicePrefix,
                                      "upload/getsignsts",
                                      "GetOssSign",
                                      {"[error]get oss sign failed:", nullptr}};

OSS_SIGN_INFO *signInfoFrom(const QJsonObject &data)
{
    auto *info = new OSS_SIGN_INFO; // the receiver's of the signal that carries it
    info->AccessKeyId = data.value(QLatin1String("AccessKeyId")).toString();
    info->AccessKeySecret = data.value(QLatin1String("AccessKeySecret")).toString();
    info->endpoint = data.value(QLatin1String("endpoint")).toString();
    info->bucketName = data.value(QLatin1String("bucketName")).toString();
    qDebug() << info->bucketName;
    info->bucketRegion = data.value(QLatin1String("bucketRegion")).toString();
    info->dir = data.value(QLatin1String("dir")).toString();
    info->SecurityToken = data.value(QLatin1String("SecurityToken")).toString();
    return info;
}

} // namespace

void VoNetworker::GetOssSign()
{
    ServiceLog::begin("get oss sign begin");
    // This is the one request without the common headers.
    issue(getOssSign, {}, {});
}

void VoNetworker::slotGetOssSignSuc(QByteArray jsonStr)
{
    const auto data = ServiceEnvelope::read(jsonStr, getOssSign);
    Q_EMIT signalGetOssSign(data ? signInfoFrom(data->toObject()) : nullptr);
}

void VoNetworker::slotGetOssSignFail(QByteArray failInfo)
{
    ServiceLog::failure(getOssSign, failInfo);
    Q_EMIT signalGetOssSign(nullptr);
}
