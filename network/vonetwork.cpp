#include "network/vonetwork.h"

#include "network/buildconstants.h"
#include "network/vonetworker.h"

VoNetwork::VoNetwork() = default;

VoNetwork::~VoNetwork() = default;

VoNetworkIntf *VoNetwork::CreateVoNetworkIntf()
{
    return new VoNetworker; // the caller's
}

void VoNetwork::ReleaseVoNetwork(VoNetworkIntf *intf) { intf->deleteLater(); }

QString VoNetwork::GetAppVersion() { return QLatin1String(BuildConstants::libraryVersion); }
