#include "network/vonetworkintf.h"

// What a host uses of it, with nothing else included.
void hostCalls(VoNetworkIntf *intf)
{
    TTSParams params;
    intf->GetOssSign();
    intf->TTS(&params, true, 0);
    QObject::connect(intf, &VoNetworkIntf::signalGetOssSign, intf,
                     [](OSS_SIGN_INFO *info) { delete info; });
    qDeleteAll(intf->GetDubList());
    qDeleteAll(intf->GetBgmList());
    const UpdateInfo *update = intf->GetUpdateInfo();
    intf->SendSmsVerifyCode(update ? update->url : QString());
    QObject::connect(intf, &VoNetworkIntf::signalRefreshTokenEnd, intf,
                     [](qlonglong, const QDateTime &expires) { return expires.isValid(); });
}
