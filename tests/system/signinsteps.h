#pragma once

#include "tests/system/serviceclient.h"

#include <QJsonObject>
#include <QString>

class LocalService;

/// The steps in which a client signs in, over HTTPS.
class SignInSteps
{
    Q_DISABLE_COPY(SignInSteps)

public:
    using Reply = ServiceClient::Reply;

    /// The service has to be running; it outlives this.
    explicit SignInSteps(LocalService *service);

    /// An address of the service.
    static QString address(const QString &path);

    ServiceClient &client();

    Reply askForCode(const QString &phone);
    /// The code that the service printed for @p phone: the oldest that was not taken.
    QString takeCode(const QString &phone);
    Reply enterCode(const QString &phone, const QString &code);
    /// Takes all steps. Returns the "data" of the last reply; empty if one was a refusal.
    QJsonObject signIn(const QString &phone);

    Reply beginQr();
    /// The page that the service printed.
    QString takePage();
    Reply pollQr(const QString &businessCode);

    Reply renew(const QString &refreshToken);

    /// Speaks with @p token; the code of the envelope.
    int speak(const QString &token);

    /// "token" or "refresh_token" of what a sign-in returned.
    static QString token(const QJsonObject &signedIn, const char *name = "token");

    /// A code that is not @p code.
    static QString otherThan(const QString &code);

private:
    LocalService *m_service;
    ServiceClient m_client;
};
