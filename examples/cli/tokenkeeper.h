#pragma once

#include "hostkit/session.h"

#include <QObject>

#include <functional>

class VoNetworkIntf;
struct Options;

/// Gives requests a valid token: the one that the user names, or that of the session, which it
/// renews before it expires, and keeps.
class TokenKeeper : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(TokenKeeper)

public:
    using Use = std::function<void(qint64 token)>;

    /// Why no request can have a token; empty: one can, or the command needs none.
    static QString problem(const Options &options);

    TokenKeeper(const Options &options, VoNetworkIntf *service);
    ~TokenKeeper() override;

    /// Calls @p use with a token, at once or after renewing it, or emits refused(). Must not be
    /// called again before that.
    void give(const Use &use);

Q_SIGNALS:
    /// @p problem is a line for the user.
    void refused(const QString &problem);

private:
    void onRenewed(qlonglong token, const QDateTime &expiry);
    void keep() const;

    VoNetworkIntf *m_service;
    bool m_usesSession;
    qint64 m_given = 0; ///< The token that the user names.
    Session m_session;
    Use m_use;
};
