#pragma once

#include "hostkit/failurereasons.h"
#include "hostkit/servicejob.h"
#include "network/vonetworkintf.h"

#include <QDateTime>
#include <QString>

#include <memory>

/// The common part of the ways to sign in: the session of the user is kept by TokenKeeper.
class SignInJob : public ServiceJob
{
    Q_OBJECT
    Q_DISABLE_COPY(SignInJob)

Q_SIGNALS:
    /// The session is kept. @p user has the name and the times, for the user.
    void succeeded(const UserInfo &user);

protected:
    /// @p kit outlives the job.
    using ServiceJob::ServiceJob;

    /// Checks that a session can be kept, then calls signIn().
    void begin() override;

    /// Begins to sign in; ends with finishWith() or fail().
    virtual void signIn() = 0;

    /// Keeps the session of @p user and ends the job.
    void finishWith(UserInfo user);
};

/// Signs in by a code that the user scans with a phone.
class CodeSignInJob : public SignInJob
{
    Q_OBJECT
    Q_DISABLE_COPY(CodeSignInJob)

public:
    /// @p kit outlives the job.
    explicit CodeSignInJob(HostKit *kit, QObject *parent = nullptr);
    ~CodeSignInJob() override;

Q_SIGNALS:
    /// The PNG file @p picture shows the code, until another one is asked for or the job ends. It
    /// comes from a server: check it before it is decoded. The code ends at @p expires.
    void codeReady(const QString &picture, const QDateTime &expires);

protected:
    /// Asks for a code.
    void signIn() override;

private:
    void onCode(const Reason &reason, bool isTrusted);
    void askLater();
    void ask();
    void onUser(UserInfo *user);

    FailureReasons m_reasons; ///< Tell where the picture came from.
    std::shared_ptr<LoginQrCode> m_code;
    QDateTime m_since;
};

/// Signs in by a code that the service sends to a phone and the user enters.
class SmsSignInJob : public SignInJob
{
    Q_OBJECT
    Q_DISABLE_COPY(SmsSignInJob)

public:
    /// @p phone is the number, as the user writes it. @p kit outlives the job.
    SmsSignInJob(HostKit *kit, const QString &phone, QObject *parent = nullptr);

    /// Signs in with @p code, once codeSent() was emitted; before start(), for a code that the user
    /// has already, none is sent.
    void enter(const QString &code);

Q_SIGNALS:
    /// The service has taken the number. It may have sent a code, which is to be entered.
    void codeSent();

protected:
    /// Has the code sent.
    void signIn() override;

private:
    void onSent();
    void onUser(UserInfo *user);

    QString m_phone;
    QString m_code;
};

/// Renews the token of the user who is signed in, however long it is still valid.
class RenewJob : public ServiceJob
{
    Q_OBJECT
    Q_DISABLE_COPY(RenewJob)

public:
    /// @p kit outlives the job.
    explicit RenewJob(HostKit *kit, QObject *parent = nullptr);

Q_SIGNALS:
    /// TokenKeeper::session() has the new times.
    void succeeded();

protected:
    void begin() override;
};

Q_DECLARE_METATYPE(UserInfo)
