#include "http/httpcallbacktypes.h"

namespace {

// QAuthenticator is no QObject and Qt declares no meta-type for the pointer. Registering it here,
// without a declaration in a header, leaves a host free to declare it itself.
void registerAuthenticatorPointer()
{
    using Helper = QtMetaTypePrivate::QMetaTypeFunctionHelper<QAuthenticator *>;
    QMetaType::registerNormalizedType(
        QByteArrayLiteral("QAuthenticator*"), Helper::Destruct, Helper::Construct,
        int(sizeof(QAuthenticator *)),
        QMetaType::TypeFlags(QtPrivate::QMetaTypeTypeFlags<QAuthenticator *>::Flags), nullptr);
}

template <typename... Signatures>
void registerFunctions()
{
    (qMetaTypeId<std::function<Signatures>>(), ...);
}

bool registerAll()
{
    qRegisterMetaType<QNetworkReply *>("QNetworkReply*");
    qRegisterMetaType<QNetworkReply::NetworkError>("QNetworkReply::NetworkError");
    qRegisterMetaType<QSslPreSharedKeyAuthenticator *>("QSslPreSharedKeyAuthenticator*");
    qRegisterMetaType<QList<QSslError>>("QList<QSslError>");
    qRegisterMetaType<QList<QNetworkReply::RawHeaderPair>>("QList<QNetworkReply::RawHeaderPair>");
    qRegisterMetaType<QMap<QString, QString>>("QMap<QString,QString>");
    registerAuthenticatorPointer();
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
