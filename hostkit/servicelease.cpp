#include "hostkit/servicelease.h"

#include "hostkit/hostkit.h"
#include "network/vonetwork.h"

namespace {

// The object goes later, and what is under way may be answered before that: nobody else would free
// the record.
void freeRecordsOf(VoNetworkIntf *service)
{
    QObject::connect(service, &VoNetworkIntf::signalGetOssSign, service,
                     [](OSS_SIGN_INFO *credentials) { delete credentials; });
    QObject::connect(service, &VoNetworkIntf::signalGetLoginQrCodeStatusEnd, service,
                     [](UserInfo *user) { delete user; });
    QObject::connect(service, &VoNetworkIntf::signalSmsLoginEnd, service,
                     [](UserInfo *user) { delete user; });
}

} // namespace

ServiceLease::ServiceLease(HostKit *kit, QObject *parent)
    : QObject(parent)
    , m_kit(kit)
    , m_service(kit->take())
{
}

ServiceLease::~ServiceLease()
{
    if (m_kit && !m_isPending) {
        m_kit->giveBack(m_service);
        return;
    }
    freeRecordsOf(m_service);
    VoNetwork::ReleaseVoNetwork(m_service);
}
