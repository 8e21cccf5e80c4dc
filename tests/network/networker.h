#pragma once

#include "network/vonetworker.h"

/// Reaches what is protected.
class Networker : public VoNetworker
{
public:
    using VoNetworker::ConvertAvtUrlToClient;
    using VoNetworker::ConvertServerToClientDubType;
    using VoNetworker::DownloadAvt;
    using VoNetworker::DownloadLoginQrCode;
};
