#pragma once

#include <QDateTime>
#include <QString>

class QJsonObject;
struct UserInfo;

/// What a user gets by signing in, as it is kept from one run to the next.
struct Session
{
    /// The session of @p user, who has just signed in.
    static Session from(const UserInfo &user);

    /// The session that toJson() made @p object of; not valid when @p object is something else.
    static Session from(const QJsonObject &object);

    /// As it is kept.
    QJsonObject toJson() const;

    /// Whether it has both tokens and their times.
    bool isValid() const;

    qint64 userId = 0;       ///< The user's number with the service.
    QString nickname;        ///< To be shown to the user.
    qint64 token = 0;        ///< Access token; 0: none.
    qint64 refreshToken = 0; ///< 0: none.
    QDateTime tokenExpiry;   ///< When the access token ends.
    QDateTime refreshExpiry; ///< When the refresh token ends.
};
