#pragma once

#include "hostkit/reason.h"
#include "hostkit/session.h"

#include <QObject>
#include <QPointer>
#include <QVector>

#include <functional>
#include <optional>

class HostKit;
class ServiceLease;

/// Keeps the session of the user who is signed in, in the file that all hosts of this user share,
/// and gives requests a valid token: that of the session, renewed before it ends or when the
/// service takes it no longer. All who need a new token wait for the same renewal.
class TokenKeeper : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(TokenKeeper)

public:
    /// Called with an access token.
    using Use = std::function<void(qint64 token)>;
    /// Called where there is no token.
    using Refuse = std::function<void(const Reason &reason)>;

    /// HostKit makes one.
    TokenKeeper(HostKit *kit, QObject *parent);
    ~TokenKeeper() override;

    /// Has every request use @p token from now on, and no session.
    void setToken(qint64 token);

    /// Whether requests have the token of the session, which can be renewed.
    bool usesSession() const;

    /// Why no request can have a token, as far as that shows without the service; none: one can.
    Reason problem() const;

    /// The session as it is now; another host may have changed it. Not valid: nobody is signed in.
    Session session() const;

    /// Keeps the session of a user who has just signed in. Returns why that failed; none: it is
    /// done.
    Reason keep(const Session &session);

    /// Removes the session; its tokens stay valid at the service until they end. False when the
    /// file could not be removed.
    bool signOut();

    /// Calls @p use with a token, at once or after renewing it, or @p refuse; neither once
    /// @p context is gone.
    void give(QObject *context, const Use &use, const Refuse &refuse);

    /// The same for a request whose token @p refused the service has not taken. With 0 the token is
    /// renewed in any case.
    void renew(qint64 refused, QObject *context, const Use &use, const Refuse &refuse);

Q_SIGNALS:
    /// Somebody has signed in here, or out, or the token was renewed.
    void changed();

private:
    struct Waiting
    {
        QPointer<QObject> context;
        Use use;
        Refuse refuse;
    };

    void onRenewed(qlonglong token, const QDateTime &expiry);
    void endRenewal(qint64 token, const Reason &reason);
    void keepRenewed() const;

    HostKit *m_kit;
    std::optional<qint64> m_given;   ///< The token that the host has named.
    Session m_renewed;               ///< The last session that was renewed here.
    ServiceLease *m_lease = nullptr; ///< Owned, while the token is being renewed.
    QVector<Waiting> m_waiting;
};
