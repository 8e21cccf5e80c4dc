#include "common/desk.h"

#include "gallery/catalogue.h"
#include "hostkit/tokenkeeper.h"
#include "start/serviceprocess.h"

Desk::Desk(QObject *parent)
    : QObject(parent)
    , m_kit(QStringLiteral("vodesk"))
    , m_catalogue(new Catalogue(this))
    , m_service(new ServiceProcess(this))
{
}

// The jobs of the catalogue need the kit.
Desk::~Desk() { delete m_catalogue; }

HostKit *Desk::kit() { return &m_kit; }

RequestLog *Desk::requests() { return &m_requests; }

Catalogue *Desk::catalogue() const { return m_catalogue; }

ServiceProcess *Desk::service() const { return m_service; }

bool Desk::isSignedIn() const { return m_kit.tokens()->problem().isNone(); }

void Desk::end(Job *job, int entry, const Reason &reason)
{
    m_requests.end(entry, reason);
    job->deleteLater();
}
