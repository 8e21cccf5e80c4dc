#include "network/vonetwork.h"

// What a host uses of it, with nothing else included.
VoNetworkIntf *hostCreates() { return VoNetwork::CreateVoNetworkIntf(); }
void hostReleases(VoNetworkIntf *intf) { VoNetwork::ReleaseVoNetwork(intf); }
QString hostAsks() { return VoNetwork::GetAppVersion(); }
