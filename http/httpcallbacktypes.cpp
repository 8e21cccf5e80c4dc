#include "http/httpcallbacktypes.h"

#include "http/httpcallbackfamilies.h"

namespace {

template <typename... Signatures>
void registerFunctions(HttpCallbackFormList<Signatures...>)
{
    (qMetaTypeId<std::function<Signatures>>(), ...);
}

// QAuthenticator* is left out on purpose. An authenticator is filled in before the signal returns,
// so a queued connection has no use for it, and the name would cost: Qt's own string connections
// look it up for every request, and a look-up that succeeds is the dearer one.
bool registerAll()
{
    qRegisterMetaType<QNetworkReply *>();
    qRegisterMetaType<QNetworkReply::NetworkError>();
    qRegisterMetaType<QSslPreSharedKeyAuthenticator *>();
    qRegisterMetaType<QList<QSslError>>();
    qRegisterNormalizedMetaType<QList<QNetworkReply::RawHeaderPair>>(
        QByteArrayLiteral("QList<QNetworkReply::RawHeaderPair>"));
    qRegisterMetaType<QMap<QString, QString>>();
#define VOHTTP_REGISTER_FAMILY(KIND, ...)                                                          \
    registerFunctions(HttpCallbackFamily<CallbackKind::KIND>::Forms());
    VOHTTP_CALLBACK_FAMILIES(VOHTTP_REGISTER_FAMILY)
#undef VOHTTP_REGISTER_FAMILY
    return true;
}

} // namespace

void registerHttpMetaTypes()
{
    static const bool registered = registerAll();
    Q_UNUSED(registered)
}
