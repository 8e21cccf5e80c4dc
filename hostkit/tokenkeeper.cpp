#include "hostkit/tokenkeeper.h"

#include "hostkit/failurereasons.h"
#include "hostkit/servicelease.h"
#include "hostkit/sessionfile.h"

#include <QCoreApplication>
#include <QDebug>
#include <QTimer>

#include <utility>

namespace {

// A token that has less than this left is renewed first, since a request takes its time.
constexpr qint64 margin = 60; // seconds

constexpr int patience = 60000; // ms for a renewal; others may wait for it without a limit

} // namespace

TokenKeeper::TokenKeeper(HostKit *kit, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
{
}

TokenKeeper::~TokenKeeper() = default;

void TokenKeeper::setToken(qint64 token) { m_given = token; }

bool TokenKeeper::usesSession() const { return !m_given; }

Reason TokenKeeper::problem() const
{
    if (m_given)
        return {};
    if (!SessionFile::exists())
        return {Reason::Kind::SignIn, tr("sign in first")};
    const Session kept = SessionFile::load();
    if (!kept.isValid())
        return {Reason::Kind::SignIn, tr("the session cannot be read; sign in again")};
    if (kept.refreshExpiry <= QDateTime::currentDateTime())
        return {Reason::Kind::SignIn, tr("the session has expired; sign in again")};
    return {};
}

// A renewed session that could not be kept is newer than the one in the file.
Session TokenKeeper::session() const
{
    const Session kept = SessionFile::load();
    const bool isSame = kept.isValid() && kept.refreshToken == m_renewed.refreshToken;
    return isSame && m_renewed.tokenExpiry > kept.tokenExpiry ? m_renewed : kept;
}

Reason TokenKeeper::keep(const Session &session)
{
    if (!session.isValid())
        return {Reason::Kind::BadAnswer, tr("the service sent no usable session")};
    if (const QString problem = SessionFile::save(session); !problem.isEmpty())
        return {Reason::Kind::File, tr("the session could not be written: %1").arg(problem)};
    Q_EMIT changed();
    return {};
}

bool TokenKeeper::signOut()
{
    if (!SessionFile::remove())
        return false;
    Q_EMIT changed();
    return true;
}

void TokenKeeper::give(QObject *context, const Use &use, const Refuse &refuse)
{
    if (m_given) {
        use(*m_given);
    } else if (const Reason reason = problem(); !reason.isNone()) {
        refuse(reason);
    } else if (const Session now = session();
               now.tokenExpiry > QDateTime::currentDateTime().addSecs(margin)) {
        use(now.token);
    } else {
        renew(now.token, context, use, refuse);
    }
}

void TokenKeeper::renew(qint64 refused, QObject *context, const Use &use, const Refuse &refuse)
{
    if (m_given)
        return use(*m_given);
    if (const Reason reason = problem(); !reason.isNone())
        return refuse(reason);
    const Session now = session();
    if (!m_lease && refused != 0 && now.token != refused)
        return use(now.token); // another host, or an earlier request, has renewed it
    m_waiting.append({context, use, refuse});
    if (m_lease)
        return;
    m_renewed = now;
    m_lease = new ServiceLease(m_kit, this);
    QTimer::singleShot(patience, m_lease, [this] {
        endRenewal(0, {Reason::Kind::TimedOut, tr("the session could not be renewed in time")});
    });
    m_lease->ask(
        &VoNetworkIntf::signalRefreshTokenEnd,
        [now](VoNetworkIntf *service) { service->RefreshToken(now.refreshToken); },
        [this](qlonglong token, const QDateTime &expiry) { onRenewed(token, expiry); });
}

// A new token is used however soon it ends: there is no better one.
void TokenKeeper::onRenewed(qlonglong token, const QDateTime &expiry)
{
    const Reason reason = FailureReasons::take();
    if (token > 0 && expiry.isValid()) {
        m_renewed.token = token;
        m_renewed.tokenExpiry = expiry;
        keepRenewed();
        endRenewal(token, {});
    } else if (reason.isNone() || reason.kind == Reason::Kind::Refused) {
        endRenewal(0, {Reason::Kind::SignIn, tr("the session could not be renewed; sign in again"),
                       reason.code});
    } else {
        endRenewal(0, reason);
    }
}

void TokenKeeper::endRenewal(qint64 token, const Reason &reason)
{
    delete std::exchange(m_lease, nullptr);
    const QVector<Waiting> waiting = std::exchange(m_waiting, {});
    const QPointer<TokenKeeper> self(this);
    for (const Waiting &one : waiting) {
        if (one.context && token != 0)
            one.use(token);
        else if (one.context)
            one.refuse(reason);
    }
    if (self && token != 0)
        Q_EMIT changed();
}

// Keeps the session, unless the user has signed out or in again meanwhile. That the file cannot be
// written is no failure: the old session in it lets the next run renew the token.
void TokenKeeper::keepRenewed() const
{
    if (SessionFile::load().refreshToken != m_renewed.refreshToken)
        return;
    if (const QString problem = SessionFile::save(m_renewed); !problem.isEmpty())
        qWarning("%s: the renewed session could not be kept: %s",
                 qPrintable(QCoreApplication::applicationName()), qPrintable(problem));
}
