#pragma once

#include "network/vonetworker.h"

/// A networker whose protected operations a test can call.
class Networker : public VoNetworker
{
public:
    using VoNetworker::ConvertAvtUrlToClient;
    using VoNetworker::ConvertServerToClientDubType;
    using VoNetworker::DownloadAvt;
    using VoNetworker::DownloadLoginQrCode;
};
