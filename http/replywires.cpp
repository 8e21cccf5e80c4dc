#include "http/replywires.h"

#include "http/httprequest.h"
#include "http/httpresponse.h"

#include <QMetaMethod>
#include <QNetworkAccessManager>
#include <QNetworkReply>

#include <cstddef>
#include <vector>

namespace {

// Qt 5.15 renamed the signal and deprecated the old name.
#if QT_VERSION >= QT_VERSION_CHECK(5, 15, 0)
constexpr auto replyError = &QNetworkReply::errorOccurred;
#else
constexpr auto replyError = QOverload<QNetworkReply::NetworkError>::of(&QNetworkReply::error);
#endif

/// Which exchanges need a connection even if nobody listens to what it leads to.
enum class Need {
    Always,
    Download, ///< Those into a file.
    Data,     ///< Those that take the data as it arrives.
    Bound,    ///< Those with a bound of the read buffer, which downloads have.
    Never
};

/// The slots of HttpResponse in the order of its declaration. Looking one up by its text takes
/// longer than to connect it.
enum class Slot {
    OnFinished,
    OnError,
    OnDownloadProgress,
    OnUploadProgress,
    OnTimeout,
    OnReadyRead,
    OnReadOnceReplyHeader,
    OnEncrypted,
    OnMetaDataChanged,
    OnPreSharedKeyAuthenticationRequired,
    OnRedirectAllowed,
    OnRedirected,
    OnSslErrors,
    OnAuthenticationRequired,
    OnHandleHead,
    Count
};

/// A signal of the reply, the slot that answers it, by their places in the meta-objects, and the
/// signal of the response that the slot emits.
struct Wire
{
    Need need;
    int from;
    int slot;
    quint64 to; ///< As bitOf() has it; 0: none of its own.
};

quint64 bitOf(std::nullptr_t) { return 0; }

template <typename Signal>
quint64 bitOf(Signal signal)
{
    return ReplyWires::bitOf(QMetaMethod::fromSignal(signal).methodIndex());
}

template <typename Signal>
int indexOf(Signal signal)
{
    return QMetaMethod::fromSignal(signal).methodIndex();
}

// The slots are the last methods of the class.
int indexOf(Slot slot)
{
    static const int first = HttpResponse::staticMetaObject.methodCount() - int(Slot::Count);
    return first + int(slot);
}

template <typename From, typename To>
Wire wire(Need need, From from, Slot slot, To to)
{
    return {need, indexOf(from), indexOf(slot), bitOf(to)};
}

// In the order in which slots answer the same signal. The indices are looked up once.
const std::vector<Wire> &replyWires()
{
    using Reply = QNetworkReply;
    using R = HttpResponse;
    static const std::vector<Wire> wires{
        wire(Need::Always, &Reply::finished, Slot::OnFinished, nullptr),
        wire(Need::Always, replyError, Slot::OnError, nullptr),
        wire(Need::Never, &Reply::downloadProgress, Slot::OnDownloadProgress,
             &R::downloadFileProgress),
        wire(Need::Never, &Reply::uploadProgress, Slot::OnUploadProgress, &R::uploadProgress),
        wire(Need::Download, &Reply::readyRead, Slot::OnReadOnceReplyHeader, nullptr),
        wire(Need::Always, &Reply::readyRead, Slot::OnHandleHead, nullptr),
        wire(Need::Data, &Reply::readyRead, Slot::OnReadyRead, &R::readyRead),
        wire(Need::Never, &Reply::encrypted, Slot::OnEncrypted, &R::encrypted),
        wire(Need::Download, &Reply::metaDataChanged, Slot::OnMetaDataChanged, &R::metaDataChanged),
        wire(Need::Bound, &Reply::redirected, Slot::OnRedirected, &R::redirected),
        wire(Need::Never, &Reply::sslErrors, Slot::OnSslErrors, &R::sslErrors),
        wire(Need::Bound, &Reply::redirectAllowed, Slot::OnRedirectAllowed, &R::redirectAllowed),
        wire(Need::Never, &Reply::preSharedKeyAuthenticationRequired,
             Slot::OnPreSharedKeyAuthenticationRequired, &R::preSharedKeyAuthenticationRequired),
    };
    return wires;
}

bool isNeeded(Need need, const HttpRequestFields &fields)
{
    switch (need) {
    case Need::Always:
        return true;
    case Need::Download:
        return fields.isDownload;
    case Need::Data:
        return fields.isDownload || fields.gathersBody;
    case Need::Bound:
        return fields.isDownload || fields.readBufferSize >= 0;
    case Need::Never:
        break;
    }
    return false;
}

void connectWire(const QNetworkReply *reply, const Wire &wire, const HttpResponse *response)
{
    QMetaObject::connect(reply, wire.from, response, wire.slot, Qt::UniqueConnection);
}

// The access manager announces this for all of its replies.
void connectAuthentication(const QNetworkReply *reply, const HttpResponse *response)
{
    static const int signal = indexOf(&QNetworkAccessManager::authenticationRequired);
    static const int slot = indexOf(Slot::OnAuthenticationRequired);
    if (reply->manager()) // somebody else's reply may have none
        QMetaObject::connect(reply->manager(), signal, response, slot);
}

void disconnectReadyRead(QNetworkReply *reply, HttpResponse *response, int slot)
{
    static const int signal = indexOf(&QNetworkReply::readyRead);
    QMetaObject::disconnect(reply, signal, response, slot);
}

} // namespace

quint64 ReplyWires::bitOf(int signal)
{
    static const int first = HttpResponse::staticMetaObject.methodOffset();
    return signal < first ? 0 : quint64(1) << (signal - first);
}

void ReplyWires::connectNeeded(QNetworkReply *reply, HttpResponse *response,
                               const HttpRequestFields &fields, quint64 heard)
{
    for (const Wire &wire : replyWires()) {
        if (isNeeded(wire.need, fields) || (heard & wire.to) != 0)
            connectWire(reply, wire, response);
    }
    connectAuthentication(reply, response);
}

void ReplyWires::connectFor(QNetworkReply *reply, HttpResponse *response, quint64 bit)
{
    if (!reply)
        return;
    for (const Wire &wire : replyWires()) {
        if ((wire.to & bit) != 0)
            connectWire(reply, wire, response);
    }
}

void ReplyWires::disconnectOpening(QNetworkReply *reply, HttpResponse *response)
{
    static const int slot = indexOf(Slot::OnReadOnceReplyHeader);
    disconnectReadyRead(reply, response, slot);
}

void ReplyWires::disconnectHead(QNetworkReply *reply, HttpResponse *response)
{
    static const int slot = indexOf(Slot::OnHandleHead);
    disconnectReadyRead(reply, response, slot);
}
