// Fuzzes how the toolkit attaches callbacks. The first byte of the input is the kind, the second
// the target; the rest is the key.

#include "callbackreceiver.h"
#include "http/httpcallbackbinder.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "input.h"
#include "qthost.h"

#include <QMetaMethod>

#include <functional>

namespace {

/// Counts what is connected to its signals.
class CountingResponse : public HttpResponse
{
public:
    CountingResponse()
        : HttpResponse(HttpRequest(HttpMethod::Get, nullptr), nullptr)
    {
    }

    int connections = 0;

protected:
    void connectNotify(const QMetaMethod &signal) override
    {
        require(signal.methodType() == QMetaMethod::Signal, "callbacks are attached to signals");
        ++connections;
    }
};

int warnings = 0; // since the execution began

void countWarnings(QtMsgType type, const QMessageLogContext &, const QString &)
{
    warnings += int(type == QtWarningMsg);
}

QVariant target(unsigned choice, CallbackReceiver *receiver)
{
    const auto call = [receiver] { receiver->onNothing(); };
    switch (choice % 8) {
    case 0:
        return QVariant::fromValue(static_cast<QObject *>(receiver));
    case 1:
        return QVariant::fromValue(std::function<void()>(call));
    case 2:
        return QVariant::fromValue(std::function<void(QByteArray)>([call](auto) { call(); }));
    case 3:
        return QVariant::fromValue(
            std::function<void(qint64, qint64)>([call](auto, auto) { call(); }));
    case 4:
        return QVariant::fromValue(std::function<void()>()); // empty
    case 5:
        return QVariant::fromValue(static_cast<QObject *>(nullptr));
    case 6:
        return QStringLiteral("text");
    default:
        return QVariant();
    }
}

void emitAll(HttpResponse *response)
{
    Q_EMIT response->finished();
    Q_EMIT response->finished(QByteArray());
    Q_EMIT response->finished(QVariantMap());
    Q_EMIT response->finished(static_cast<QNetworkReply *>(nullptr));
    Q_EMIT response->finished(QString());
    Q_EMIT response->error();
    Q_EMIT response->error(QByteArray());
    Q_EMIT response->error(static_cast<QNetworkReply *>(nullptr));
    Q_EMIT response->error(QNetworkReply::NoError);
    Q_EMIT response->downloadProgress(1, 2);
    Q_EMIT response->uploadProgress(1, 2);
    Q_EMIT response->timeout();
    Q_EMIT response->timeout(nullptr);
    Q_EMIT response->readyRead(nullptr);
    Q_EMIT response->downloadFileFinished();
    Q_EMIT response->downloadFileFinished(QString());
    Q_EMIT response->downloadFileError();
    Q_EMIT response->downloadFileError(QString());
    Q_EMIT response->encrypted();
    Q_EMIT response->metaDataChanged();
    Q_EMIT response->preSharedKeyAuthenticationRequired(nullptr);
    Q_EMIT response->redirectAllowed();
    Q_EMIT response->redirected(QUrl());
    Q_EMIT response->sslErrors({});
    Q_EMIT response->retried();
    Q_EMIT response->repeated();
    Q_EMIT response->authenticationRequired(nullptr);
    Q_EMIT response->authenticationRequireFailed();
    Q_EMIT response->authenticationRequireFailed(nullptr);
    Q_EMIT response->head(QList<QNetworkReply::RawHeaderPair>());
    Q_EMIT response->head(QMap<QString, QString>());
    Q_EMIT response->downloadFileProgress(1, 2);
    Q_EMIT response->downloadFileNameChanged(QString());
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    static const QtHost host;
    qInstallMessageHandler(countWarnings);
    warnings = 0;
    Input input(data, size);
    const int kind = int(input.byte() % 32) - 1; // -1 to 30; kinds are 0 to 20
    CallbackReceiver receiver;
    const unsigned choice = input.byte();
    const QString key = QString::fromStdString(input.rest());

    HttpRequest request(HttpMethod::Get, nullptr);
    request.bind(CallbackKind(kind), key, target(choice, &receiver));
    CountingResponse response;
    HttpCallbackBinder::attach(&response, request.fields);
    require((warnings > 0) == (response.connections == 0),
            "there is a warning of just those callbacks that fit nothing");
    const int connections = response.connections;
    emitAll(&response);
    require(receiver.calls <= connections, "each connection is called once");
    HttpCallbackBinder::attach(&response, request.fields);
    require(response.connections == 2 * connections, "a callback fits what it has fitted before");
    return 0;
}
