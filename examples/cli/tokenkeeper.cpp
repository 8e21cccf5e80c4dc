#include "tokenkeeper.h"

#include "hostkit/failurereason.h"
#include "hostkit/sessionfile.h"
#include "network/vonetworkintf.h"
#include "options.h"

#include <QDebug>

#include <utility>

namespace {

// A token that has less than this left is renewed first, since a request takes its time.
constexpr qint64 margin = 60; // seconds

const QLatin1String waysIn("vospeak login --qr, or vospeak login --sms NUMBER");

QString signInAgain() { return QStringLiteral("sign in again: %1").arg(waysIn); }

bool usesSession(const Options &options)
{
    const bool needsToken = options.action == Options::Action::Recognize
                            || (options.action == Options::Action::Say && !options.anonymous);
    return needsToken && !options.token;
}

} // namespace

QString TokenKeeper::problem(const Options &options)
{
    if (!usesSession(options))
        return {};
    if (!SessionFile::exists())
        return QStringLiteral("sign in first: %1").arg(waysIn);
    const Session session = SessionFile::load();
    if (!session.isValid())
        return QStringLiteral("the session cannot be read; %1").arg(signInAgain());
    if (session.refreshExpiry <= QDateTime::currentDateTime())
        return QStringLiteral("the session has expired; %1").arg(signInAgain());
    return {};
}

TokenKeeper::TokenKeeper(const Options &options, VoNetworkIntf *service)
    : m_service(service)
    , m_usesSession(usesSession(options))
    , m_given(options.token.value_or(0))
{
    if (m_usesSession)
        m_session = SessionFile::load();
    connect(service, &VoNetworkIntf::signalRefreshTokenEnd, this, &TokenKeeper::onRenewed);
}

TokenKeeper::~TokenKeeper() = default;

void TokenKeeper::give(const Use &use)
{
    if (!m_usesSession) {
        use(m_given);
    } else if (m_session.tokenExpiry > QDateTime::currentDateTime().addSecs(margin)) {
        use(m_session.token);
    } else {
        m_use = use;
        m_service->RefreshToken(m_session.refreshToken);
    }
}

// A new token is used however soon it expires: there is no better one.
void TokenKeeper::onRenewed(qlonglong token, const QDateTime &expiry)
{
    if (token <= 0 || !expiry.isValid()) {
        Q_EMIT refused(FailureReason::orElse(
            QStringLiteral("the session could not be renewed; %1").arg(signInAgain())));
        return;
    }
    m_session.token = token;
    m_session.tokenExpiry = expiry;
    keep();
    std::exchange(m_use, {})(token);
}

// Keeps the session, unless the user has signed out or in again meanwhile. That the file cannot be
// written is no failure: the old session in it lets the next run renew the token.
void TokenKeeper::keep() const
{
    if (SessionFile::load().refreshToken != m_session.refreshToken)
        return;
    if (const QString problem = SessionFile::save(m_session); !problem.isEmpty())
        qWarning("vospeak: the renewed session could not be kept: %s", qPrintable(problem));
}
