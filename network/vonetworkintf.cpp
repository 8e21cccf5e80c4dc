#include "network/vonetworkintf.h"

namespace {

// String-based and queued connections carry the types under the names that the signals use.
bool registerMetaTypes()
{
    qRegisterMetaType<OSS_SIGN_INFO *>("OSS_SIGN_INFO*");
    qRegisterMetaType<SHORT_STT_STATUS>("SHORT_STT_STATUS");
    qRegisterMetaType<STT_STATUS>("STT_STATUS");
    qRegisterMetaType<TTSParams *>("TTSParams*");
    qRegisterMetaType<TTS_STATUS>("TTS_STATUS");
    qRegisterMetaType<LONG_TTS_STATUS>("LONG_TTS_STATUS");
    qRegisterMetaType<DubType>("DubType");
    qRegisterMetaType<DubInfo *>("DubInfo*");
    qRegisterMetaType<BgmInfo *>("BgmInfo*");
    qRegisterMetaType<LoginQrCode *>("LoginQrCode*");
    qRegisterMetaType<UserInfo *>("UserInfo*");
    qRegisterMetaType<UpdateInfo *>("UpdateInfo*");
    return true;
}

} // namespace

VoNetworkIntf::VoNetworkIntf()
{
    static const bool registered = registerMetaTypes();
    Q_UNUSED(registered)
}

VoNetworkIntf::~VoNetworkIntf() = default;
