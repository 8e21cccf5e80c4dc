#include "common/desk.h"

#include "gallery/catalogue.h"
#include "hostkit/tokenkeeper.h"
#include "start/serviceprocess.h"

namespace {

constexpr int patience = 120000; // ms; long audio is fetched without a sign of progress

} // namespace

Desk::Desk(QObject *parent)
    : QObject(parent)
    , m_kit(QStringLiteral("vodesk"))
    , m_session(m_kit.tokens()->session())
    , m_patience(patience)
    , m_catalogue(new Catalogue(this))
    , m_service(new ServiceProcess(this))
{
    connect(m_kit.tokens(), &TokenKeeper::changed, this, &Desk::lookAtSession);
}

// The jobs of the catalogue need the kit.
Desk::~Desk() { delete m_catalogue; }

HostKit *Desk::kit() { return &m_kit; }

RequestLog *Desk::requests() { return &m_requests; }

Catalogue *Desk::catalogue() const { return m_catalogue; }

ServiceProcess *Desk::service() const { return m_service; }

bool Desk::isSignedIn() const { return m_kit.tokens()->problem().isNone(); }

void Desk::setPatience(int ms) { m_patience = ms; }

void Desk::lookAtSession()
{
    const Session session = m_kit.tokens()->session();
    const bool isSame = session.isValid() == m_session.isValid()
                        && session.refreshToken == m_session.refreshToken
                        && session.refreshExpiry == m_session.refreshExpiry;
    m_session = session;
    if (!isSame)
        Q_EMIT sessionChanged();
}

void Desk::end(Job *job, const QPersistentModelIndex &entry, const Reason &reason)
{
    using Kind = Reason::Kind;
    m_requests.end(entry, reason);
    job->deleteLater();
    lookAtSession();
    if (reason.isNone())
        Q_EMIT serviceSought(true);
    else if (reason.kind == Kind::Unreachable || reason.kind == Kind::Tls)
        Q_EMIT serviceSought(false);
}
