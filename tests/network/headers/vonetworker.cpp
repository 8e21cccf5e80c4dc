#include "network/vonetworker.h"

// What a host can see of it, with nothing else included.
VoNetworkIntf *hostMakes() { return new VoNetworker; }
