#pragma once

#include <QDateTime>
#include <QString>

class QJsonObject;
struct UserInfo;

/// What signing in gave.
struct Session
{
    /// What @p user, who has just signed in, brought.
    static Session from(const UserInfo &user);

    /// What toJson() made. Not valid when it was something else.
    static Session from(const QJsonObject &object);

    QJsonObject toJson() const;

    /// Whether there is all that is needed to ask for something and to renew the token.
    bool isValid() const;

    qint64 userId = 0;
    QString nickname;
    qint64 token = 0;
    qint64 refreshToken = 0;
    QDateTime tokenExpiry;
    QDateTime refreshExpiry;
};
