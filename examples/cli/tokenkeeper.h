#pragma once

#include "session.h"

#include <QObject>

#include <functional>

class VoNetworkIntf;
struct Options;

/// Gives every request a token that is good: the one that the user names, or the session's, which
/// it renews in time and keeps.
class TokenKeeper : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(TokenKeeper)

public:
    using Use = std::function<void(qint64 token)>;

    /// Why no request can have a token; empty: one can, or none needs it.
    static QString problem(const Options &options);

    TokenKeeper(const Options &options, VoNetworkIntf *service);
    ~TokenKeeper() override;

    /// Calls @p use with a token, at once or when it has been renewed, or emits refused(). One at a
    /// time.
    void give(const Use &use);

Q_SIGNALS:
    /// The line is for the user.
    void refused(const QString &problem);

private:
    void onRenewed(qlonglong token, const QDateTime &expiry);
    void keep() const;

    VoNetworkIntf *m_service;
    bool m_usesSession;
    qint64 m_given = 0; ///< The token that the user named.
    Session m_session;
    Use m_use;
};
