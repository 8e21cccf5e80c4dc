#include "hostkit/session.h"

#include "network/vonetworkintf.h"

#include <QJsonObject>
#include <QJsonValue>

namespace {

const QLatin1String userIdKey("userId");
const QLatin1String nicknameKey("nickname");
const QLatin1String tokenKey("token");
const QLatin1String refreshTokenKey("refreshToken");
const QLatin1String tokenExpiresKey("tokenExpires");
const QLatin1String sessionExpiresKey("sessionExpires");

// Numbers are kept as texts, because JSON does not keep every number of 64 bits exactly.
QJsonValue exactly(qint64 number) { return QString::number(number); }

qint64 numberIn(const QJsonValue &text) { return text.toString().toLongLong(); }

QDateTime timeIn(const QJsonValue &text)
{
    return QDateTime::fromString(text.toString(), Qt::ISODate);
}

} // namespace

Session Session::from(const UserInfo &user)
{
    return {user.user_id,       user.nickname,          user.token,
            user.refresh_token, user.token_expire_time, user.refresh_expire_time};
}

Session Session::from(const QJsonObject &object)
{
    return {numberIn(object.value(userIdKey)),     object.value(nicknameKey).toString(),
            numberIn(object.value(tokenKey)),      numberIn(object.value(refreshTokenKey)),
            timeIn(object.value(tokenExpiresKey)), timeIn(object.value(sessionExpiresKey))};
}

QJsonObject Session::toJson() const
{
    return {{userIdKey, exactly(userId)},
            {nicknameKey, nickname},
            {tokenKey, exactly(token)},
            {refreshTokenKey, exactly(refreshToken)},
            {tokenExpiresKey, tokenExpiry.toUTC().toString(Qt::ISODate)},
            {sessionExpiresKey, refreshExpiry.toUTC().toString(Qt::ISODate)}};
}

// A token that the service has left out is 0.
bool Session::isValid() const
{
    return token > 0 && refreshToken > 0 && tokenExpiry.isValid() && refreshExpiry.isValid();
}
