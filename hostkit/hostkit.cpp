#include "hostkit/hostkit.h"

#include "hostkit/tokenkeeper.h"
#include "network/vonetwork.h"
#include "network/vonetworkintf.h"

#include <QCoreApplication>
#include <QThread>

#include <utility>

namespace {

constexpr int mostIdle = 4; // each keeps connections to the service open

} // namespace

HostKit::HostKit(const QString &label, QObject *parent)
    : QObject(parent)
    , m_label(label)
    , m_tokens(new TokenKeeper(this, this))
{
    // What is to be deleted later is deleted once more after this, and not after the event loop.
    connect(qApp, &QCoreApplication::aboutToQuit, this, &HostKit::releaseAll);
}

HostKit::~HostKit()
{
    delete std::exchange(m_tokens, nullptr);
    releaseAll();
    if (QThread::currentThread()->loopLevel() > 0)
        return;
    for (int round = 0; round < 2; ++round) // the service objects, then their clients
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

QString HostKit::label() const { return m_label; }

TokenKeeper *HostKit::tokens() const { return m_tokens; }

QString HostKit::serviceAddress() { return QStringLiteral(VONETWORK_SERVICE_BASE_ADDRESS); }

VoNetworkIntf *HostKit::take()
{
    return m_idle.isEmpty() ? VoNetwork::CreateVoNetworkIntf() : m_idle.takeLast();
}

void HostKit::giveBack(VoNetworkIntf *service)
{
    if (m_idle.size() < mostIdle)
        m_idle.append(service);
    else
        VoNetwork::ReleaseVoNetwork(service);
}

void HostKit::releaseAll()
{
    const QVector<VoNetworkIntf *> idle = std::exchange(m_idle, {});
    for (VoNetworkIntf *service : idle)
        VoNetwork::ReleaseVoNetwork(service);
}
