#include "http/httpcallbacktypes.h"

namespace {

template <typename... Signatures>
void registerFunctions()
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
    registerFunctions<void(), void(QByteArray), void(QString), void(QVariantMap),
                      void(QNetworkReply *), void(qint64, qint64),
                      void(QNetworkReply::NetworkError), void(QSslPreSharedKeyAuthenticator *),
                      void(QUrl), void(QList<QSslError>), void(QAuthenticator *),
                      void(QList<QNetworkReply::RawHeaderPair>), void(QMap<QString, QString>)>();
    return true;
}

} // namespace

void registerHttpMetaTypes()
{
    static const bool registered = registerAll();
    Q_UNUSED(registered)
}
