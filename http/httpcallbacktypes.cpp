#include "http/httpcallbacktypes.h"

#include "http/httpcallbackfamilies.h"

namespace {

template <typename... Signatures>
void registerFunctions(HttpCallbackFormList<Signatures...>)
{
    (qMetaTypeId<std::function<Signatures>>(), ...);
}

// QAuthenticator* is left out on purpose: an authenticator is filled in before the signal returns,
// so it never travels queued, and Qt's own string connections look the name up for every request,
// which costs more when it is known.
bool registerAll()
{
    qRegisterMetaType<QNetworkReply *>("QNetworkReply*");
    qRegisterMetaType<QNetworkReply::NetworkError>("QNetworkReply::NetworkError");
    qRegisterMetaType<QSslPreSharedKeyAuthenticator *>("QSslPreSharedKeyAuthenticator*");
    qRegisterMetaType<QList<QSslError>>("QList<QSslError>");
    qRegisterMetaType<QList<QNetworkReply::RawHeaderPair>>("QList<QNetworkReply::RawHeaderPair>");
    qRegisterMetaType<QMap<QString, QString>>("QMap<QString,QString>");
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
