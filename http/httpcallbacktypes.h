#pragma once

#include <QAuthenticator>
#include <QList>
#include <QMap>
#include <QMetaType>
#include <QNetworkReply>
#include <QSslError>
#include <QSslPreSharedKeyAuthenticator>
#include <QUrl>
#include <QVariantMap>

#include <functional>

/// The std::function types that a callback may have. The name that stands here, blank included, is
/// the one under which the meta-type system knows the type, and the key under which a callback of
/// that type is bound. Qt's own declaration macros would take the blank out, so the types are
/// registered by hand.
#define VOHTTP_CALLBACK_TYPE(NAME, ...)                                                            \
    template <>                                                                                    \
    struct QMetaTypeId<std::function<__VA_ARGS__>>                                                 \
    {                                                                                              \
        enum { Defined = 1 };                                                                      \
        static int qt_metatype_id()                                                                \
        {                                                                                          \
            using Function = std::function<__VA_ARGS__>;                                           \
            using Helper = QtMetaTypePrivate::QMetaTypeFunctionHelper<Function>;                   \
            static const int id = QMetaType::registerNormalizedType(                               \
                QByteArrayLiteral(NAME), Helper::Destruct, Helper::Construct,                      \
                int(sizeof(Function)),                                                             \
                QMetaType::TypeFlags(QtPrivate::QMetaTypeTypeFlags<Function>::Flags), nullptr);    \
            return id;                                                                             \
        }                                                                                          \
    };

VOHTTP_CALLBACK_TYPE("std::function<void (void)>", void())
VOHTTP_CALLBACK_TYPE("std::function<void (QByteArray)>", void(QByteArray))
VOHTTP_CALLBACK_TYPE("std::function<void (QString)>", void(QString))
VOHTTP_CALLBACK_TYPE("std::function<void (QVariantMap)>", void(QVariantMap))
VOHTTP_CALLBACK_TYPE("std::function<void (QNetworkReply*)>", void(QNetworkReply *))
VOHTTP_CALLBACK_TYPE("std::function<void (qint64, qint64)>", void(qint64, qint64))
VOHTTP_CALLBACK_TYPE("std::function<void (QNetworkReply::NetworkError)>",
                     void(QNetworkReply::NetworkError))
VOHTTP_CALLBACK_TYPE("std::function<void (QSslPreSharedKeyAuthenticator*)>",
                     void(QSslPreSharedKeyAuthenticator *))
VOHTTP_CALLBACK_TYPE("std::function<void (QUrl)>", void(QUrl))
VOHTTP_CALLBACK_TYPE("std::function<void (QList<QSslError>)>", void(QList<QSslError>))
VOHTTP_CALLBACK_TYPE("std::function<void (QAuthenticator*)>", void(QAuthenticator *))
VOHTTP_CALLBACK_TYPE("std::function<void (QList<QNetworkReply::RawHeaderPair>)>",
                     void(QList<QNetworkReply::RawHeaderPair>))
VOHTTP_CALLBACK_TYPE("std::function<void (QMap<QString, QString>)>", void(QMap<QString, QString>))

#undef VOHTTP_CALLBACK_TYPE

/// Registers the types that the signals and callbacks of HttpResponse carry with the meta-type
/// system, so that queued and string-based connections can carry them. Every response calls it;
/// further calls do nothing. May be called from any thread.
void registerHttpMetaTypes();
