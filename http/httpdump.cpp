#include "http/httpdump.h"

#include "http/httprequest.h"

#include <QDebug>
#include <QNetworkReply>
#include <QRegularExpression>

namespace {

QString prefixLines(QString text, const QString &prefix)
{
    static const QRegularExpression line(QStringLiteral("^(.*)"),
                                         QRegularExpression::MultilineOption);
    return text.replace(line, prefix + QStringLiteral("\\1"));
}

QString indented(const QString &text) { return prefixLines(text, QStringLiteral("    ")); }

QString withoutTrailingNewline(const QString &text)
{
    return text.endsWith(QLatin1Char('\n')) ? text.chopped(1) : text;
}

QString orNull(const QString &text) { return text.isEmpty() ? QStringLiteral("null") : text; }

QString headerText(const QList<QNetworkReply::RawHeaderPair> &headers)
{
    QString text;
    for (const QNetworkReply::RawHeaderPair &header : headers)
        text += QStringLiteral("%1: %2\n")
                    .arg(QString::fromUtf8(header.first), QString::fromUtf8(header.second));
    return withoutTrailingNewline(orNull(text));
}

QString headerText(const QNetworkRequest &request)
{
    QList<QNetworkReply::RawHeaderPair> headers;
    const QList<QByteArray> names = request.rawHeaderList();
    for (const QByteArray &name : names)
        headers.append(qMakePair(name, request.rawHeader(name)));
    return headerText(headers);
}

template <typename Map, typename ToText>
QString entryLines(const Map &map, ToText toText)
{
    QString text;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        text += it.key() + QStringLiteral(": ") + toText(it.value()) + QLatin1Char('\n');
    return text;
}

QString bodyData(const HttpRequestFields &fields)
{
    switch (fields.bodyType) {
    case BodyType::MultiPart: {
        QString text;
        QDebug(&text).nospace() << fields.body;
        return text;
    }
    case BodyType::FileMap:
        return entryLines(fields.body.value<QMap<QString, QString>>(),
                          [](const QString &path) { return path; });
    case BodyType::FormData:
        return entryLines(fields.body.toMap(),
                          [](const QVariant &value) { return value.toString(); });
    case BodyType::Raw:
    case BodyType::RawJson:
    case BodyType::x_www_form_urlencoded:
        return QString::fromUtf8(fields.body.toByteArray());
    case BodyType::None:
        break;
    }
    return QString();
}

QString bodyText(const HttpRequestFields &fields)
{
    const QString data = prefixLines(orNull(bodyData(fields)), QStringLiteral("=>    "));
    return withoutTrailingNewline(QStringLiteral("Type: ")
                                  + QLatin1String(bodyTypeName(fields.bodyType))
                                  + QStringLiteral("\nData: \n") + data);
}

using Replacements = QList<QPair<QString, QString>>;

QString filled(QString text, const Replacements &replacements)
{
    for (const QPair<QString, QString> &replacement : replacements)
        text.replace(replacement.first, replacement.second);
    return text;
}

QString address(const HttpRequestFields &fields) { return fields.networkRequest.url().toString(); }

QString verb(const HttpRequestFields &fields)
{
    return QString::fromLatin1(httpVerb(fields.method));
}

} // namespace

QString HttpDump::request(const HttpRequestFields &fields)
{
    return filled(
        QStringLiteral("General: \n"
                       "    Request URL: %{url} \n"
                       "    Request Method: %{method} \n"
                       "Request Headers: \n"
                       "%{requestHeaders} \n"
                       "Request Body: \n"
                       "%{requestBody}"),
        {{QStringLiteral("%{url}"), address(fields)},
         {QStringLiteral("%{method}"), verb(fields)},
         {QStringLiteral("%{requestHeaders}"), indented(headerText(fields.networkRequest))},
         {QStringLiteral("%{requestBody}"), indented(bodyText(fields))}});
}

QString HttpDump::response(const HttpRequestFields &fields)
{
    const QNetworkReply *reply = fields.reply;
    return filled(
        QStringLiteral("General: \n"
                       "    Request URL: %{url} \n"
                       "    Request Method: %{method} \n"
                       "    Request Status: %{status}(%{statusString}) \n"
                       "Request Headers: \n"
                       "%{requestHeaders} \n"
                       "Response Headers: \n"
                       "%{responseHeaders} \n"
                       "Request Body: \n"
                       "%{requestBody}"),
        {{QStringLiteral("%{url}"), address(fields)},
         {QStringLiteral("%{method}"), verb(fields)},
         {QStringLiteral("%{status}"), QString::number(int(reply->error()))},
         {QStringLiteral("%{statusString}"), reply->errorString()},
         {QStringLiteral("%{requestHeaders}"), indented(headerText(reply->request()))},
         {QStringLiteral("%{responseHeaders}"), indented(headerText(reply->rawHeaderPairs()))},
         {QStringLiteral("%{requestBody}"), indented(bodyText(fields))}});
}
