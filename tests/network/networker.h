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
    using VoNetworker::runCommand;
    using VoNetworker::slotCreateSTTTaskFail;
    using VoNetworker::slotCreateSTTTaskSuc;
    using VoNetworker::slotGetBgmListFail;
    using VoNetworker::slotGetBgmListSuc;
    using VoNetworker::slotGetDubListFail;
    using VoNetworker::slotGetDubListSuc;
    using VoNetworker::slotGetLoginQrCodeFail;
    using VoNetworker::slotGetLoginQrCodeStatusFail;
    using VoNetworker::slotGetLoginQrCodeStatusSuc;
    using VoNetworker::slotGetLoginQrCodeSuc;
    using VoNetworker::slotGetOssSignFail;
    using VoNetworker::slotGetOssSignSuc;
    using VoNetworker::slotGetSTTRetFail;
    using VoNetworker::slotGetSTTRetSuc;
    using VoNetworker::slotGetUpdateInfoFail;
    using VoNetworker::slotGetUpdateInfoSuc;
    using VoNetworker::slotLongTTSTaskFail;
    using VoNetworker::slotLongTTSTaskStatusFail;
    using VoNetworker::slotLongTTSTaskStatusSuc;
    using VoNetworker::slotLongTTSTaskSuc;
    using VoNetworker::slotRefreshTokenFail;
    using VoNetworker::slotRefreshTokenSuc;
    using VoNetworker::slotSendSmsVerifyCodeFail;
    using VoNetworker::slotSendSmsVerifyCodeSuc;
    using VoNetworker::slotShortSTTFail;
    using VoNetworker::slotShortSTTSuc;
    using VoNetworker::slotSmsLoginFail;
    using VoNetworker::slotSmsLoginSuc;
    using VoNetworker::slotTTSFail;
    using VoNetworker::slotTTSSuc;
};
