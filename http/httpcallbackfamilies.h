#pragma once

#include "http/httpcallbacktypes.h"
#include "http/httptypes.h"

#include <type_traits>

// clang-format off
/// The callback families, one row each: the kind, the signal of HttpResponse that its callbacks
/// attach to, and the overloads of that signal in the order in which they are tried. The binder, the
/// registration of types, the checks of the typed conveniences and the tests are made from this
/// table. A kind without a row leaves a switch of the binder incomplete; a row without a typed
/// convenience in HttpRequest does not compile in the tests.
#define VOHTTP_CALLBACK_FAMILIES(FAMILY)                                                           \
    FAMILY(Finished, finished, void(), void(QByteArray), void(QVariantMap), void(QNetworkReply *), \
           void(QString))                                                                          \
    FAMILY(Error, error, void(), void(QByteArray), void(QNetworkReply *),                          \
           void(QNetworkReply::NetworkError))                                                      \
    FAMILY(DownloadProgress, downloadProgress, void(qint64, qint64))                               \
    FAMILY(UploadProgress, uploadProgress, void(qint64, qint64))                                   \
    FAMILY(Timeout, timeout, void(QNetworkReply *), void())                                        \
    FAMILY(ReadyRead, readyRead, void(QNetworkReply *))                                            \
    FAMILY(DownloadFileFinished, downloadFileFinished, void(), void(QString))                      \
    FAMILY(DownloadFileError, downloadFileError, void(), void(QString))                            \
    FAMILY(Encrypted, encrypted, void())                                                           \
    FAMILY(MetaDataChanged, metaDataChanged, void())                                               \
    FAMILY(PreSharedKeyAuthenticationRequired, preSharedKeyAuthenticationRequired,                 \
           void(QSslPreSharedKeyAuthenticator *))                                                  \
    FAMILY(RedirectAllowed, redirectAllowed, void())                                               \
    FAMILY(Redirected, redirected, void(QUrl))                                                     \
    FAMILY(SslErrors, sslErrors, void(QList<QSslError>))                                           \
    FAMILY(Retried, retried, void())                                                               \
    FAMILY(Repeated, repeated, void())                                                             \
    FAMILY(AuthenticationRequired, authenticationRequired, void(QAuthenticator *))                 \
    FAMILY(AuthenticationRequireFailed, authenticationRequireFailed, void(),                       \
           void(QNetworkReply *))                                                                  \
    FAMILY(Head, head, void(QList<QNetworkReply::RawHeaderPair>), void(QMap<QString, QString>))    \
    FAMILY(DownloadFileProgress, downloadFileProgress, void(qint64, qint64))                       \
    FAMILY(DownloadFileNameChanged, downloadFileNameChanged, void(QString))
// clang-format on

/// The forms of one family, each as a function type with the arguments of a signal.
template <typename... Signatures>
struct HttpCallbackFormList
{
    /// Whether @p Signature is one of the forms.
    template <typename Signature>
    static constexpr bool has = (std::is_same_v<Signature, Signatures> || ...);
};

/// The callback family of @p Kind: Forms lists its forms, and signal<HttpResponse, Form> is the
/// signal that a form attaches to.
template <CallbackKind Kind>
struct HttpCallbackFamily;

/// The specialisation of HttpCallbackFamily that a row stands for.
#define VOHTTP_CALLBACK_FAMILY(KIND, NAME, ...)                                                    \
    template <>                                                                                    \
    struct HttpCallbackFamily<CallbackKind::KIND>                                                  \
    {                                                                                              \
        using Forms = HttpCallbackFormList<__VA_ARGS__>;                                           \
                                                                                                   \
        template <typename Response, typename Signature>                                           \
        static constexpr Signature Response::*signal = &Response::NAME;                            \
    };
VOHTTP_CALLBACK_FAMILIES(VOHTTP_CALLBACK_FAMILY)
#undef VOHTTP_CALLBACK_FAMILY
