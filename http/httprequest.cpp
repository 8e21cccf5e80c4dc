#include "http/httprequest.h"

#include "http/httpdispatch.h"
#include "http/httpdownloader.h"

#include <QHttpMultiPart>
#include <QJsonDocument>
#include <QJsonObject>
#include <QUrl>

#include <cstring>

namespace {

// Header names and values end at a NUL or a line break: what follows would be a header of its own.
// The result is never null, because Qt removes a header whose value is null.
QByteArray headerBytes(const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    return QByteArray(bytes.constData(), int(std::strcspn(bytes.constData(), "\r\n")));
}

QByteArray formUrlEncoded(const QVariantMap &nameToValue)
{
    QByteArrayList pairs;
    pairs.reserve(nameToValue.size());
    for (auto it = nameToValue.cbegin(); it != nameToValue.cend(); ++it) {
        pairs.append(QUrl::toPercentEncoding(it.key()) + '='
                     + QUrl::toPercentEncoding(it.value().toString()));
    }
    return pairs.join('&');
}

} // namespace

HttpRequest::HttpRequest(HttpMethod method, HttpClient *client)
{
    fields.method = method;
    fields.client = client;
}

HttpRequest::~HttpRequest() = default;

HttpRequest &HttpRequest::url(const QString &address)
{
    fields.networkRequest.setUrl(QUrl(address, QUrl::TolerantMode));
    return *this;
}

HttpRequest &HttpRequest::headers(const QVariantMap &map)
{
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        fields.networkRequest.setRawHeader(headerBytes(it.key()),
                                           headerBytes(it.value().toString()));
    return *this;
}

HttpRequest &HttpRequest::jsonBody(const QJsonObject &object)
{
    setBody(BodyType::RawJson, QJsonDocument(object).toJson());
    fields.networkRequest.setHeader(QNetworkRequest::ContentTypeHeader,
                                    QStringLiteral("application/json"));
    return *this;
}

HttpRequest &HttpRequest::rawBody(const QByteArray &bytes)
{
    setBody(BodyType::Raw, bytes);
    return *this;
}

HttpRequest &HttpRequest::formUrlEncodedBody(const QByteArray &encoded)
{
    setBody(BodyType::x_www_form_urlencoded, encoded);
    fields.networkRequest.setHeader(QNetworkRequest::ContentTypeHeader,
                                    QStringLiteral("application/x-www-form-urlencoded"));
    return *this;
}

HttpRequest &HttpRequest::formUrlEncodedBody(const QVariantMap &nameToValue)
{
    return formUrlEncodedBody(formUrlEncoded(nameToValue));
}

HttpRequest &HttpRequest::fileMapBody(const QMap<QString, QString> &nameToPath)
{
    setBody(BodyType::FileMap, QVariant::fromValue(nameToPath));
    return *this;
}

HttpRequest &HttpRequest::formDataBody(const QVariantMap &nameToValue)
{
    setBody(BodyType::FormData, nameToValue);
    return *this;
}

HttpRequest &HttpRequest::multiPartBody(QHttpMultiPart *multiPart)
{
    setBody(BodyType::MultiPart, QVariant::fromValue(multiPart));
    return *this;
}

HttpRequest &HttpRequest::timeout(int ms)
{
    fields.timeoutMs = ms;
    return *this;
}

HttpRequest &HttpRequest::block(bool block)
{
    fields.block = block;
    return *this;
}

HttpRequest &HttpRequest::retry(int count)
{
    fields.retryCount = count;
    return *this;
}

HttpRequest &HttpRequest::repeat(int count)
{
    fields.repeatCount = count;
    return *this;
}

HttpRequest &HttpRequest::authenticator(const QAuthenticator &authenticator)
{
    fields.authenticator = authenticator;
    return *this;
}

HttpRequest &HttpRequest::maxAuthenticationTimes(int count)
{
    fields.maxAuthenticationTimes = count;
    return *this;
}

HttpRequest &HttpRequest::readBufferSize(qint64 bytes)
{
    fields.readBufferSize = bytes;
    return *this;
}

HttpRequest &HttpRequest::ignoreSslErrors(const QList<QSslError> &errors)
{
    fields.ignoredSslErrors = errors;
    return *this;
}

HttpRequest &HttpRequest::download(const QString &filePath)
{
    fields.isDownload = true;
    fields.downloadFilePath = filePath;
    return *this;
}

HttpRequest &HttpRequest::enableResume(bool enable)
{
    fields.enableResume = enable;
    return *this;
}

HttpRequest &HttpRequest::logLevel(int level)
{
    fields.logLevel = level;
    return *this;
}

HttpRequest &HttpRequest::bind(CallbackKind kind, const QString &key, const QVariant &target)
{
    fields.callbacks[int(kind)].append(qMakePair(key, target));
    return *this;
}

HttpResponse *HttpRequest::send() const
{
    return fields.isDownload ? HttpDownloader::start(*this)
                             : HttpDispatch::dispatch(*this, nullptr);
}

void HttpRequest::setBody(BodyType type, const QVariant &body)
{
    fields.bodyType = type;
    fields.body = body;
}
