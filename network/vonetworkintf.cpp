#include "network/vonetworkintf.h"

namespace {

// String-based and queued connections carry the types under the names that the signals use.
bool registerMetaTypes()
{
    qRegisterMetaType<OSS_SIGN_INFO *>();
    qRegisterMetaType<SHORT_STT_STATUS>();
    qRegisterMetaType<STT_STATUS>();
    qRegisterMetaType<TTSParams *>();
    qRegisterMetaType<TTS_STATUS>();
    qRegisterMetaType<LONG_TTS_STATUS>();
    qRegisterMetaType<DubType>();
    qRegisterMetaType<DubInfo *>();
    qRegisterMetaType<BgmInfo *>();
    qRegisterMetaType<LoginQrCode *>();
    qRegisterMetaType<UserInfo *>();
    qRegisterMetaType<UpdateInfo *>();
    return true;
}

} // namespace

VoNetworkIntf::VoNetworkIntf()
{
    static const bool registered = registerMetaTypes();
    Q_UNUSED(registered)
}

VoNetworkIntf::~VoNetworkIntf() = default;
