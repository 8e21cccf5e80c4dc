#include "http/httpdispatch.h"

#include "http/httpblocker.h"
#include "http/httpclient.h"
#include "http/httpdump.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "http/promptbody.h"

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QHttpMultiPart>
#include <QNetworkReply>
#include <QPointer>

#include <memory>

namespace {

void setMultiPartContentType(HttpRequestFields &fields, const QHttpMultiPart *multiPart)
{
    // Qt leaves a content type that is set as it is, so this one goes out and not the form's own.
    fields.networkRequest.setHeader(QNetworkRequest::ContentTypeHeader,
                                    QStringLiteral("multipart/form-data;boundary=%1")
                                        .arg(QString::fromLatin1(multiPart->boundary())));
}

QNetworkReply *sendBytes(const HttpRequestFields &fields, const QByteArray &verb)
{
    const QByteArray body = fields.body.toByteArray();
    QNetworkReply *reply = fields.client->sendCustomRequest(fields.networkRequest, verb, body);
    PromptBody::arrange(reply, body.size());
    return reply;
}

/// The reply owns @p multiPart afterwards; without a reply the caller still does.
QNetworkReply *sendMultiPart(HttpRequestFields &fields, const QByteArray &verb,
                             QHttpMultiPart *multiPart)
{
    setMultiPartContentType(fields, multiPart);
    QNetworkReply *reply = fields.client->sendCustomRequest(fields.networkRequest, verb, multiPart);
    if (reply)
        multiPart->setParent(reply);
    PromptBody::arrange(reply, 0); // Qt gathers what it sends of a form by itself
    return reply;
}

/// Sends a form that the dispatcher built and that nobody else will delete.
QNetworkReply *sendForm(HttpRequestFields &fields, const QByteArray &verb,
                        std::unique_ptr<QHttpMultiPart> form)
{
    QNetworkReply *reply = sendMultiPart(fields, verb, form.get());
    if (reply)
        (void)form.release(); // the reply's child now
    return reply;
}

QHttpPart formPart(const QString &disposition)
{
    QHttpPart part;
    part.setHeader(QNetworkRequest::ContentDispositionHeader, disposition);
    return part;
}

// A line break in a name would end the header, and what follows could add headers and parts.
QString inDisposition(QString name)
{
    return name.replace(QLatin1Char('\r'), QLatin1String("%0D"))
        .replace(QLatin1Char('\n'), QLatin1String("%0A"));
}

std::unique_ptr<QHttpMultiPart> fileForm(const QMap<QString, QString> &nameToPath)
{
    auto form = std::make_unique<QHttpMultiPart>(QHttpMultiPart::FormDataType);
    for (auto it = nameToPath.cbegin(); it != nameToPath.cend(); ++it) {
        auto *file = new QFile(it.value(), form.get());
        file->open(QIODevice::ReadOnly); // Qt sends an empty form when it did not open
        QHttpPart part = formPart(
            QStringLiteral(R"(form-data; name="%1";filename="%2")")
                .arg(inDisposition(it.key()), inDisposition(QFileInfo(it.value()).fileName())));
        part.setBodyDevice(file);
        form->append(part);
    }
    return form;
}

std::unique_ptr<QHttpMultiPart> textForm(const QVariantMap &nameToValue)
{
    auto form = std::make_unique<QHttpMultiPart>(QHttpMultiPart::FormDataType);
    for (auto it = nameToValue.cbegin(); it != nameToValue.cend(); ++it) {
        QHttpPart part =
            formPart(QStringLiteral(R"(form-data; name="%1")").arg(inDisposition(it.key())));
        part.setBody(it.value().toString().toUtf8());
        form->append(part);
    }
    return form;
}

/// Null without a client, and without the multi-part object that the body type promises: Qt would
/// crash on either.
QNetworkReply *sendBody(HttpRequestFields &fields, const QByteArray &verb)
{
    if (!fields.client)
        return nullptr;
    switch (fields.bodyType) {
    case BodyType::MultiPart: {
        auto *multiPart = qobject_cast<QHttpMultiPart *>(fields.body.value<QObject *>());
        return multiPart ? sendMultiPart(fields, verb, multiPart) : nullptr;
    }
    case BodyType::FileMap:
        return sendForm(fields, verb, fileForm(fields.body.value<QMap<QString, QString>>()));
    case BodyType::FormData:
        return sendForm(fields, verb, textForm(fields.body.toMap()));
    case BodyType::None:
    case BodyType::Raw:
    case BodyType::RawJson:
    case BodyType::x_www_form_urlencoded:
        break;
    }
    return sendBytes(fields, verb);
}

void complain(const HttpRequestFields &fields, const QString &message)
{
    if (fields.logLevel >= HttpLogLevel::Critical)
        qCritical().noquote() << message;
}

} // namespace

HttpResponse *HttpDispatch::dispatch(const HttpRequest &request, HttpResponse *response)
{
    HttpRequest sent(request);
    HttpRequestFields &fields = sent.fields;

    const QByteArray verb = httpVerb(fields.method);
    if (verb.isEmpty()) {
        complain(fields, QStringLiteral("Url: [%1]; Method: [%2] not support!")
                             .arg(fields.networkRequest.url().toString(), QString()));
        return nullptr;
    }

    QNetworkReply *reply = sendBody(fields, verb);
    if (!reply) {
        complain(fields, QStringLiteral("Http reply invalid"));
        return nullptr;
    }
    fields.reply = reply;
    if (!fields.ignoredSslErrors.isEmpty())
        reply->ignoreSslErrors(fields.ignoredSslErrors);
    if (fields.logLevel >= HttpLogLevel::Dumps)
        qDebug().noquote() << HttpDump::request(fields);

    if (!response) {
        response = new HttpResponse(std::move(sent), reply); // the reply's child
        return HttpBlocker::waitIfAsked(response) ? response : nullptr;
    }
    const QPointer<HttpResponse> living(response);
    response->setParent(reply);
    response->setRequest(sent);
    return living;
}
