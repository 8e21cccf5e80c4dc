#include "network/filefetch.h"
#include "network/jsonnumber.h"
#include "network/serviceenvelope.h"
#include "network/servicelog.h"
#include "network/serviceoperation.h"
#include "network/vonetworker.h"

#include <QDebug>
#include <QDir>
#include <QJsonObject>
#include <QPointer>

namespace {

constexpr ServiceOperation getLoginQrCode{HttpMethod::Get, ucenterServicePrefix,
                                          "login/getMpQrCode", "GetLoginQrCode"};
// The slash at the front of the path is doubled in the address. The service expects it so.
constexpr ServiceOperation getLoginQrCodeStatus{HttpMethod::Get, ucenterServicePrefix,
                                                "/login/getMpStatus?business_code=%1",
                                                "GetLoginQrCodeStatus"};
constexpr ServiceOperation sendSmsVerifyCode{HttpMethod::Post, ucenterServicePrefix, "verify/sms",
                                             "SendSmsVerifyCode"};
constexpr ServiceOperation smsVerifyCodeLogin{HttpMethod::Post, ucenterServicePrefix, "login/sms",
                                              "SmsLogin"};
constexpr ServiceOperation refreshAccessToken{HttpMethod::Get, ucenterServicePrefix,
                                              "token/refresh?refresh_token=%1", "RefreshToken"};

constexpr int smsSceneSignIn = 1;
constexpr int scanConfirmed = 1;

// The path of the picture is put together as these stand, with the slash doubled.
constexpr char qrImageFolder[] = "/VoTTS/";
constexpr char qrImageFile[] = "/login_qr_code.png";

QDateTime localTime(const QJsonValue &text)
{
    return QDateTime::fromString(text.toString(), QStringLiteral("yyyy-MM-dd hh:mm:ss"));
}

// Both ways to sign in bring these objects; a reply about a code has them a level deeper.
UserInfo *userInfoFrom(const QJsonObject &user)
{
    const QJsonObject base = user.value(QLatin1String("base")).toObject();
    const QJsonObject token = user.value(QLatin1String("token")).toObject();
    auto *info = new UserInfo; // the receiver's of the signal that carries it
    info->user_id = JsonNumber::toInt64(base.value(QLatin1String("user_id")));
    info->nickname = base.value(QLatin1String("nickname")).toString();
    info->header_url = base.value(QLatin1String("header_url")).toString();
    info->token = JsonNumber::toInt64(token.value(QLatin1String("token")));
    info->refresh_token = JsonNumber::toInt64(token.value(QLatin1String("refresh_token")));
    info->token_expire_time = localTime(token.value(QLatin1String("token_expire_time")));
    info->refresh_expire_time = localTime(token.value(QLatin1String("refresh_expire_time")));
    return info;
}

} // namespace

void VoNetworker::GetLoginQrCode() { issue(getLoginQrCode, commonHeaders(), {}); }

void VoNetworker::slotGetLoginQrCodeSuc(QByteArray jsonStr)
{
    const auto reply = ServiceEnvelope::read(jsonStr, getLoginQrCode);
    if (!reply) {
        Q_EMIT signalGetLoginQrCodeEnd(nullptr);
        return;
    }
    const QJsonObject data = reply->toObject();
    loginQrCode = new LoginQrCode; // the receiver's; the pointer is kept for the signal
    loginQrCode->expire_time =
        QDateTime::fromSecsSinceEpoch(data.value(QLatin1String("expire_time")).toInt());
    loginQrCode->business_code = data.value(QLatin1String("business_code")).toString();
    DownloadLoginQrCode(data.value(QLatin1String("url")).toString(),
                        QDir::tempPath() + QLatin1String(qrImageFolder)
                            + QLatin1String(qrImageFile));
}

void VoNetworker::slotGetLoginQrCodeFail(QByteArray failInfo)
{
    ServiceLog::failure(getLoginQrCode, failInfo);
    Q_EMIT signalGetLoginQrCodeEnd(nullptr);
}

void VoNetworker::DownloadLoginQrCode(QString qrUrl, QString savePath)
{
    constexpr const char *tag = "VoNetworker::DownloadLoginQrCode";
    ServiceLog::beginDownload(tag, "qrUrl=", qrUrl, ",saveDir=", savePath);
    loginQrCode->qrImagePath = savePath;
    const QPointer<VoNetworker> self(this); // the host may release it during the fetch
    const FileFetch::Result picture = FileFetch::fetch(qrUrl, tag);
    if (self && picture.error != QNetworkReply::NoError)
        Q_EMIT signalGetLoginQrCodeEnd(nullptr); // the record follows all the same
    // The record may be a newer one, if another reply has come during the fetch.
    if (self && FileFetch::save(picture.body, savePath, tag, ",open file error,"))
        Q_EMIT signalGetLoginQrCodeEnd(loginQrCode);
}

void VoNetworker::GetLoginQrCodeStatus(QString businessCode)
{
    issue(getLoginQrCodeStatus, commonHeaders(), {}, businessCode);
}

void VoNetworker::slotGetLoginQrCodeStatusSuc(QByteArray jsonStr)
{
    const auto data = ServiceEnvelope::read(jsonStr, getLoginQrCodeStatus);
    if (!data || data->toObject().value(QLatin1String("status")).toInt() != scanConfirmed) {
        Q_EMIT signalGetLoginQrCodeStatusEnd(nullptr);
        return;
    }
    UserInfo *user = userInfoFrom(data->toObject().value(QLatin1String("user_info")).toObject());
    qDebug() << "VoNetworker::slotGetLoginQrCodeStatusSuc" << QString::fromUtf8(jsonStr);
    Q_EMIT signalGetLoginQrCodeStatusEnd(user);
}

void VoNetworker::slotGetLoginQrCodeStatusFail(QByteArray failInfo)
{
    ServiceLog::failure(getLoginQrCodeStatus, failInfo);
    Q_EMIT signalGetLoginQrCodeStatusEnd(nullptr);
}

void VoNetworker::SendSmsVerifyCode(QString phone)
{
    const QJsonObject body{{QStringLiteral("phone"), phone},
                           {QStringLiteral("scene"), smsSceneSignIn}};
    ServiceLog::begin("VoNetworker::SendSmsVerifyCode", body);
    issue(sendSmsVerifyCode, commonHeaders(), body);
}

void VoNetworker::slotSendSmsVerifyCodeSuc(QByteArray jsonStr)
{
    if (ServiceEnvelope::read(jsonStr, sendSmsVerifyCode))
        qDebug() << "VoNetworker::slotSendSmsVerifyCodeSuc"
                 << "send suc";
    Q_EMIT signalSendSmsEnd();
}

void VoNetworker::slotSendSmsVerifyCodeFail(QByteArray failInfo)
{
    ServiceLog::failure(sendSmsVerifyCode, failInfo);
    Q_EMIT signalSendSmsEnd();
}

void VoNetworker::SmsVerifyCodeLogin(QString phone, QString verifyCode)
{
    const QJsonObject body{{QStringLiteral("phone"), phone},
                           {QStringLiteral("verify"), verifyCode}};
    ServiceLog::begin("VoNetworker::SmsVerifyCodeLogin", body);
    issue(smsVerifyCodeLogin, commonHeaders(), body);
}

void VoNetworker::slotSmsLoginSuc(QByteArray jsonStr)
{
    const auto data = ServiceEnvelope::read(jsonStr, smsVerifyCodeLogin);
    if (!data) {
        Q_EMIT signalSmsLoginEnd(nullptr);
        return;
    }
    UserInfo *user = userInfoFrom(data->toObject());
    qDebug() << "token=" << user->token;
    Q_EMIT signalSmsLoginEnd(user);
}

void VoNetworker::slotSmsLoginFail(QByteArray failInfo)
{
    ServiceLog::failure(smsVerifyCodeLogin, failInfo);
    Q_EMIT signalSmsLoginEnd(nullptr);
}

void VoNetworker::RefreshToken(qint64 refreshToken)
{
    issue(refreshAccessToken, commonHeaders(), {}, QString::number(refreshToken));
}

void VoNetworker::slotRefreshTokenSuc(QByteArray jsonStr)
{
    qint64 newToken = -1;
    QDateTime expireTime;
    if (const auto reply = ServiceEnvelope::read(jsonStr, refreshAccessToken)) {
        const QJsonObject data = reply->toObject();
        newToken = JsonNumber::toInt64(data.value(QLatin1String("token")));
        // The member of the same name in the reply about a code is a number of seconds.
        expireTime = localTime(data.value(QLatin1String("expire_time")));
        qDebug() << "slotRefreshTokenSuc:" << newToken << "expireTime:" << expireTime;
    }
    Q_EMIT signalRefreshTokenEnd(newToken, expireTime);
}

void VoNetworker::slotRefreshTokenFail(QByteArray failInfo)
{
    ServiceLog::failure(refreshAccessToken, failInfo);
    // The current time, though a refusal has an invalid one: hosts go by the token alone.
    Q_EMIT signalRefreshTokenEnd(-1, QDateTime::currentDateTime());
}
