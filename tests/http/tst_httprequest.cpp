#include "http/httpclient.h"
#include "http/httprequest.h"
#include "http/httpresponse.h"
#include "tests/http/httptesting.h"
#include "tests/support/logcapture.h"

#include <QDebug>
#include <QHttpMultiPart>
#include <QJsonArray>
#include <QJsonObject>
#include <QPointer>
#include <QTest>

#include <type_traits>

namespace {

using Headers = QList<QPair<QByteArray, QByteArray>>;
using Change = std::function<void(HttpRequest &)>;

Headers rawHeaders(const HttpRequest &request)
{
    const QNetworkRequest &network = request.fields.networkRequest;
    Headers headers;
    const QList<QByteArray> names = network.rawHeaderList();
    for (const QByteArray &name : names)
        headers.append(qMakePair(name, network.rawHeader(name)));
    return headers;
}

template <typename Value>
QString shown(const Value &value)
{
    QString text;
    QDebug(&text).nospace() << value;
    return text;
}

/// Every field of a request as text, in order.
QStringList described(const HttpRequest &request)
{
    const HttpRequestFields &f = request.fields;
    return {
        "method "_s + shown(int(f.method)),
        "client "_s + shown(quintptr(f.client)),
        "reply "_s + shown(quintptr(f.reply)),
        "url "_s + shown(f.networkRequest.url()),
        "headers "_s + shown(rawHeaders(request)),
        "bodyType "_s + shown(int(f.bodyType)),
        "body "_s + shown(f.body),
        "timeoutMs "_s + shown(f.timeoutMs),
        "block "_s + shown(f.block),
        "retryCount "_s + shown(f.retryCount),
        "isRetry "_s + shown(f.isRetry),
        "repeatCount "_s + shown(f.repeatCount),
        "authenticator "_s + f.authenticator.user() + "/"_s + f.authenticator.password(),
        "maxAuthenticationTimes "_s + shown(f.maxAuthenticationTimes),
        "readBufferSize "_s + shown(f.readBufferSize),
        "ignoredSslErrors "_s + shown(f.ignoredSslErrors),
        "isDownload "_s + shown(f.isDownload),
        "downloadFilePath "_s + f.downloadFilePath,
        "enableResume "_s + shown(f.enableResume),
        "supportsResume "_s + shown(f.supportsResume),
        "downloadedBytes "_s + shown(f.downloadedBytes),
        "totalBytes "_s + shown(f.totalBytes),
        "callbacks "_s + shown(f.callbacks),
        "extraMap1 "_s + shown(f.extraMap1),
        "extraMap2 "_s + shown(f.extraMap2),
        "logLevel "_s + shown(f.logLevel),
    };
}

QStringList difference(const QStringList &before, const QStringList &after)
{
    QStringList changed;
    for (int i = 0; i < before.size(); ++i) {
        if (before.at(i) != after.at(i))
            changed.append(after.at(i));
    }
    return changed;
}

} // namespace

Q_DECLARE_METATYPE(Change)

/// The description of a request: what the constructor and each builder operation put into it.
class TestHttpRequest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aNewRequestHasTheConstructorsArgumentsAndTheDefaults()
    {
        HttpClient client;
        const HttpRequest request(HttpMethod::Put, &client);
        QCOMPARE(described(request), (QStringList{
                                         "method 3"_s,
                                         "client "_s + shown(quintptr(&client)),
                                         "reply 0"_s,
                                         "url QUrl(\"\")"_s,
                                         "headers ()"_s,
                                         "bodyType 0"_s,
                                         "body QVariant(QByteArray, \"\")"_s,
                                         "timeoutMs -1"_s,
                                         "block false"_s,
                                         "retryCount 0"_s,
                                         "isRetry false"_s,
                                         "repeatCount 1"_s,
                                         "authenticator /"_s,
                                         "maxAuthenticationTimes 1"_s,
                                         "readBufferSize -1"_s,
                                         "ignoredSslErrors ()"_s,
                                         "isDownload false"_s,
                                         "downloadFilePath "_s,
                                         "enableResume true"_s,
                                         "supportsResume false"_s,
                                         "downloadedBytes 0"_s,
                                         "totalBytes 0"_s,
                                         "callbacks QMap()"_s,
                                         "extraMap1 QMap()"_s,
                                         "extraMap2 QMap()"_s,
                                         "logLevel 3"_s,
                                     }));
        QVERIFY(request.fields.authenticator.isNull());
    }

    void theFieldsLieInTheirDeclaredOrder()
    {
        const HttpRequest request(HttpMethod::Get, nullptr);
        const HttpRequestFields &f = request.fields;
        const QVector<const void *> places{&f.method,
                                           &f.client,
                                           &f.reply,
                                           &f.networkRequest,
                                           &f.bodyType,
                                           &f.body,
                                           &f.timeoutMs,
                                           &f.block,
                                           &f.retryCount,
                                           &f.isRetry,
                                           &f.repeatCount,
                                           &f.authenticator,
                                           &f.maxAuthenticationTimes,
                                           &f.readBufferSize,
                                           &f.ignoredSslErrors,
                                           &f.isDownload,
                                           &f.downloadFilePath,
                                           &f.enableResume,
                                           &f.supportsResume,
                                           &f.downloadedBytes,
                                           &f.totalBytes,
                                           &f.callbacks,
                                           &f.extraMap1,
                                           &f.extraMap2,
                                           &f.logLevel};
        QVector<const void *> sorted = places;
        std::sort(sorted.begin(), sorted.end(), std::less<>());
        QCOMPARE(places, sorted);
    }

    void theFieldsHaveTheirTypes()
    {
        using F = HttpRequestFields;
        const bool
            all = std::is_same_v<
                      decltype(F::timeoutMs), qint32> && std::is_same_v<decltype(F::retryCount), qint32> && std::is_same_v<decltype(F::repeatCount), qint32> && std::is_same_v<decltype(F::maxAuthenticationTimes), qint32> && std::is_same_v<decltype(F::readBufferSize), qint64> && std::is_same_v<decltype(F::downloadedBytes), qint64> && std::is_same_v<decltype(F::totalBytes), qint64> && std::is_same_v<decltype(F::logLevel), qint32> && std::is_same_v<decltype(F::callbacks), QMap<int, QList<QPair<QString, QVariant>>>> && std::is_same_v<decltype(F::extraMap1), QVariantMap> && std::is_same_v<decltype(F::extraMap2), QVariantMap>;
        QVERIFY(all);
        QVERIFY(std::has_virtual_destructor_v<HttpRequest>);
    }

    void eachOperationChangesItsOwnFieldsAndNoOther_data()
    {
        QTest::addColumn<Change>("change");
        QTest::addColumn<QStringList>("changed");
        const auto row = [](const char *name, const Change &change, const QStringList &changed) {
            QTest::newRow(name) << change << changed;
        };
        row("url", [](HttpRequest &r) { r.url("http://h/p"_s); }, {"url QUrl(\"http://h/p\")"_s});
        row("rawBody", [](HttpRequest &r) { r.rawBody(QByteArray("a\0b", 3)); },
            {"bodyType 1"_s, "body QVariant(QByteArray, \"a\\x00\"\"b\")"_s});
        row("jsonBody",
            [](HttpRequest &r) {
                r.jsonBody({{"k"_s, 1}});
            },
            {"headers (QPair(\"Content-Type\",\"application/json\"))"_s, "bodyType 2"_s,
             "body QVariant(QByteArray, \"{\\n    \\\"k\\\": 1\\n}\\n\")"_s});
        row("formUrlEncodedBody of bytes", [](HttpRequest &r) { r.formUrlEncodedBody("a=%201"_b); },
            {"headers (QPair(\"Content-Type\",\"application/x-www-form-urlencoded\"))"_s,
             "bodyType 3"_s, "body QVariant(QByteArray, \"a=%201\")"_s});
        row("formUrlEncodedBody of a map",
            [](HttpRequest &r) {
                r.formUrlEncodedBody(QVariantMap{{"b"_s, "x y&=ä"_s}, {"a&"_s, 1}, {"c"_s, {}}});
            },
            {"headers (QPair(\"Content-Type\",\"application/x-www-form-urlencoded\"))"_s,
             "bodyType 3"_s, "body QVariant(QByteArray, \"a%26=1&b=x%20y%26%3D%C3%A4&c=\")"_s});
        row("fileMapBody",
            [](HttpRequest &r) {
                r.fileMapBody({{"b"_s, "/f2"_s}, {"a"_s, "/f1"_s}});
            },
            {"bodyType 4"_s, "body QVariant(QMap<QString,QString>, )"_s});
        row("multiPartBody of nothing", [](HttpRequest &r) { r.multiPartBody(nullptr); },
            {"bodyType 5"_s, "body QVariant(QHttpMultiPart*, QObject(0x0))"_s});
        row("formDataBody",
            [](HttpRequest &r) {
                r.formDataBody({{"a"_s, 1}});
            },
            {"bodyType 6"_s, "body QVariant(QVariantMap, QMap((\"a\", QVariant(int, 1))))"_s});
        row("timeout", [](HttpRequest &r) { r.timeout(250); }, {"timeoutMs 250"_s});
        row("block", [](HttpRequest &r) { r.block(true); }, {"block true"_s});
        row("retry", [](HttpRequest &r) { r.retry(2); }, {"retryCount 2"_s});
        row("repeat", [](HttpRequest &r) { r.repeat(-3); }, {"repeatCount -3"_s});
        row("authenticator",
            [](HttpRequest &r) {
                QAuthenticator authenticator;
                authenticator.setUser("user"_s);
                authenticator.setPassword("password"_s);
                r.authenticator(authenticator);
            },
            {"authenticator user/password"_s});
        row("maxAuthenticationTimes", [](HttpRequest &r) { r.maxAuthenticationTimes(-1); },
            {"maxAuthenticationTimes -1"_s});
        row("readBufferSize", [](HttpRequest &r) { r.readBufferSize(Q_INT64_C(5000000000)); },
            {"readBufferSize 5000000000"_s});
        row("ignoreSslErrors",
            [](HttpRequest &r) { r.ignoreSslErrors({QSslError(QSslError::HostNameMismatch)}); },
            {"ignoredSslErrors (\"The host name did not match any of the valid hosts for this "
             "certificate\")"_s});
        row("download", [](HttpRequest &r) { r.download("/tmp/f"_s); },
            {"isDownload true"_s, "downloadFilePath /tmp/f"_s});
        row("enableResume", [](HttpRequest &r) { r.enableResume(false); },
            {"enableResume false"_s});
        row("logLevel", [](HttpRequest &r) { r.logLevel(5); }, {"logLevel 5"_s});
        row("bind", [](HttpRequest &r) { r.bind(CallbackKind::Head, "key"_s, 7); },
            {"callbacks QMap((18, (QPair(\"key\",QVariant(int, 7)))))"_s});
    }
    void eachOperationChangesItsOwnFieldsAndNoOther()
    {
        QFETCH(Change, change);
        QFETCH(QStringList, changed);
        HttpRequest request(HttpMethod::Get, nullptr);
        const QStringList before = described(request);
        change(request);
        QCOMPARE(difference(before, described(request)), changed);
    }

    void everyOperationReturnsTheRequestItself()
    {
        HttpRequest r(HttpMethod::Get, nullptr);
        const QVector<HttpRequest *> results{
            &r.url("http://h/"_s),
            &r.headers({}),
            &r.jsonBody({}),
            &r.rawBody({}),
            &r.formUrlEncodedBody(QByteArray()),
            &r.formUrlEncodedBody(QVariantMap()),
            &r.fileMapBody({}),
            &r.formDataBody({}),
            &r.multiPartBody(nullptr),
            &r.timeout(1),
            &r.block(true),
            &r.retry(1),
            &r.repeat(1),
            &r.authenticator({}),
            &r.maxAuthenticationTimes(1),
            &r.readBufferSize(1),
            &r.ignoreSslErrors({}),
            &r.download({}),
            &r.enableResume(true),
            &r.logLevel(1),
            &r.bind(CallbackKind::Error, {}, {}),
            &r.onFinished([] {}),
        };
        QCOMPARE(results, QVector<HttpRequest *>(results.size(), &r));
    }

    void anAddressIsParsedTolerantly_data()
    {
        QTest::addColumn<QString>("address");
        QTest::addColumn<QByteArray>("encoded");
        QTest::newRow("plain") << "http://h:8/p?q=1#f"_s
                               << "http://h:8/p?q=1#f"_b;
        QTest::newRow("blank") << "http://h/a b"_s
                               << "http://h/a%20b"_b;
        QTest::newRow("encoded blank") << "http://h/a%20b"_s
                                       << "http://h/a%20b"_b;
        QTest::newRow("lone percent sign") << "http://h/100%"_s
                                           << "http://h/100%25"_b;
        QTest::newRow("percent sign and text") << "http://h/%zz"_s
                                               << "http://h/%25zz"_b;
        QTest::newRow("umlaut") << "http://h/ä"_s
                                << "http://h/%C3%A4"_b;
        QTest::newRow("no slash") << "http://h"_s
                                  << "http://h"_b;
        QTest::newRow("two slashes") << "http://h/v1//login"_s
                                     << "http://h/v1//login"_b;
        QTest::newRow("empty") << QString() << QByteArray();
        QTest::newRow("bad port") << "http://h:99999/"_s << QByteArray();
        QTest::newRow("bad host") << "http://[/"_s << QByteArray();
    }
    void anAddressIsParsedTolerantly()
    {
        QFETCH(QString, address);
        QFETCH(QByteArray, encoded);
        HttpRequest request(HttpMethod::Get, nullptr);
        request.url("http://before/"_s).url(address);
        QCOMPARE(request.fields.networkRequest.url().toEncoded(), encoded);
    }

    void headersAreSetInKeyOrder_data()
    {
        QTest::addColumn<QVariantMap>("map");
        QTest::addColumn<Headers>("headers");
        const auto row = [](const char *name, const QVariantMap &map, const Headers &headers) {
            QTest::newRow(name) << map << headers;
        };
        row("none", {}, {});
        // In the order of their code points, so "b" comes after "B" and replaces it.
        row("key order", {{"b"_s, "2"_s}, {"c"_s, "3"_s}, {"a"_s, "1"_s}, {"B"_s, "4"_s}},
            {{"a", "1"}, {"b", "2"}, {"c", "3"}});
        row("numbers and truth values",
            {{"appcode"_s, 40000000}, {"big"_s, Q_INT64_C(9223372036854775807)}, {"yes"_s, true}},
            {{"appcode", "40000000"}, {"big", "9223372036854775807"}, {"yes", "true"}});
        row("UTF-8", {{"Zeichen-ä"_s, "語\U0001F600"_s}},
            {{"Zeichen-\xC3\xA4", "\xE8\xAA\x9E\xF0\x9F\x98\x80"}});
        row("empty value", {{"empty"_s, QString()}}, {{"empty", ""}});
        row("value without a text", {{"list"_s, QVariantList{1}}}, {{"list", ""}});
        row("NUL in a value", {{"a"_s, "one\0two"_s}}, {{"a", "one"}});
        row("NUL in a name", {{"name\0lost"_s, "v"_s}}, {{"name", "v"}});
        row("NUL at the front of a value", {{"a"_s, "\0two"_s}}, {{"a", ""}});
        row("nothing left of a name", {{"\0x"_s, "1"_s}, {"\rx"_s, "2"_s}, {"\n"_s, "3"_s}}, {});
        row("two names that a NUL makes the same", {{"n\0a"_s, "1"_s}, {"n\0b"_s, "2"_s}},
            {{"n", "2"}});
        row("names that Qt knows",
            {{"Content-Type"_s, "text/x"_s}, {"Authorization"_s, "Bearer 1"_s}},
            {{"Authorization", "Bearer 1"}, {"Content-Type", "text/x"}});
        row("percent signs", {{"a"_s, "%1 %20"_s}}, {{"a", "%1 %20"}});
    }
    void headersAreSetInKeyOrder()
    {
        QFETCH(QVariantMap, map);
        QFETCH(Headers, headers);
        HttpRequest request(HttpMethod::Get, nullptr);
        request.headers(map);
        QCOMPARE(rawHeaders(request), headers);
    }

    void aLaterHeaderReplacesAnEarlierOneOfItsName()
    {
        HttpRequest request(HttpMethod::Get, nullptr);
        request.headers({{"token"_s, "old"_s}, {"other"_s, "stays"_s}});
        request.headers({{"Token"_s, "new"_s}});
        QCOMPARE(rawHeaders(request), (Headers{{"other", "stays"}, {"Token", "new"}}));
    }

    void aJsonBodyIsTheIndentedDocument_data()
    {
        QTest::addColumn<QJsonObject>("object");
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QJsonObject() << "{\n}\n"_b;
        QTest::newRow("flat, in key order")
            << QJsonObject{{"file_link"_s, "http://h/ä \"q\" \n"_s},
                           {"async"_s, true},
                           {"token"_s, Q_INT64_C(1234567890123)},
                           {"none"_s, QJsonValue()}}
            << "{\n    \"async\": true,\n    \"file_link\": \"http://h/\xC3\xA4 \\\"q\\\" \\n\",\n"
               "    \"none\": null,\n    \"token\": 1234567890123\n}\n"_b;
        QTest::newRow("nested") << QJsonObject{{"a"_s, QJsonArray{1, 2}},
                                               {"o"_s, QJsonObject{{"k"_s, ""_s}}}}
                                << "{\n    \"a\": [\n        1,\n        2\n    ],\n    \"o\": {\n"
                                   "        \"k\": \"\"\n    }\n}\n"_b;
    }
    void aJsonBodyIsTheIndentedDocument()
    {
        QFETCH(QJsonObject, object);
        QFETCH(QByteArray, bytes);
        HttpRequest request(HttpMethod::Post, nullptr);
        request.headers({{"content-type"_s, "text/plain"_s}}).jsonBody(object);
        QCOMPARE(request.fields.body, QVariant(bytes));
        QCOMPARE(request.fields.body.userType(), int(QMetaType::QByteArray));
        QCOMPARE(request.fields.bodyType, BodyType::RawJson);
        QCOMPARE(rawHeaders(request), (Headers{{"Content-Type", "application/json"}}));
    }

    void theLastBodyCounts()
    {
        HttpRequest request(HttpMethod::Post, nullptr);
        request.formDataBody({{"a"_s, 1}}).rawBody("last");
        QCOMPARE(request.fields.bodyType, BodyType::Raw);
        QCOMPARE(request.fields.body, QVariant("last"_b));
    }

    void theBodiesHoldWhatTheyWereGiven()
    {
        QHttpMultiPart multiPart;
        HttpRequest request(HttpMethod::Post, nullptr);
        request.multiPartBody(&multiPart);
        QCOMPARE(request.fields.body.value<QHttpMultiPart *>(), &multiPart);
        const QMap<QString, QString> files{{"b"_s, "/2"_s}, {"a"_s, "/1"_s}};
        request.fileMapBody(files);
        QCOMPARE((request.fields.body.value<QMap<QString, QString>>()), files);
    }

    void boundEntriesStayInTheirOrder()
    {
        HttpRequest request(HttpMethod::Get, nullptr);
        request.bind(CallbackKind::Error, "1e()"_s, 1)
            .bind(CallbackKind::Finished, "1b()"_s, 2)
            .bind(CallbackKind::Finished, "1a()"_s, 3)
            .bind(CallbackKind::Finished, "1b()"_s, 2)
            .bind(CallbackKind(21), QString(), QVariant());
        using Entries = HttpRequestFields::Callbacks;
        const QMap<int, Entries> expected{
            {0, {{"1b()"_s, 2}, {"1a()"_s, 3}, {"1b()"_s, 2}}},
            {1, {{"1e()"_s, 1}}},
            {21, {{QString(), QVariant()}}},
        };
        QCOMPARE(request.fields.callbacks, expected);
    }

    void aCopyIsIndependentOfItsOriginal()
    {
        HttpClient client;
        QHttpMultiPart multiPart;
        HttpRequest original(HttpMethod::Post, &client);
        original.url("http://h/1"_s)
            .headers({{"n"_s, "1"_s}})
            .multiPartBody(&multiPart)
            .bind(CallbackKind::Finished, "1a()"_s, 1);
        original.fields.extraMap1 = {{"x"_s, 1}};
        original.fields.extraMap2 = {{"y"_s, 2}};
        const QStringList before = described(original);

        HttpRequest copy(original);
        QCOMPARE(described(copy), before);
        copy.url("http://h/2"_s)
            .headers({{"n"_s, "2"_s}, {"m"_s, "3"_s}})
            .rawBody("r")
            .retry(9)
            .bind(CallbackKind::Finished, "1b()"_s, 2)
            .bind(CallbackKind::Error, "1c()"_s, 3);
        copy.fields.extraMap1.insert("z"_s, 3);
        copy.fields.extraMap2.clear();
        QCOMPARE(described(original), before);
        QCOMPARE(copy.fields.client, &client);
        QCOMPARE(original.fields.body.value<QHttpMultiPart *>(), &multiPart);
    }

    void assigningAndMovingCarryEveryField()
    {
        HttpClient client;
        HttpRequest original(HttpMethod::Put, &client);
        original.url("http://h/1"_s).retry(3).bind(CallbackKind::Head, "1a()"_s, 1);
        const QStringList before = described(original);
        HttpRequest assigned(HttpMethod::Get, nullptr);
        assigned = original;
        QCOMPARE(described(assigned), before);
        HttpRequest moved(std::move(assigned));
        QCOMPARE(described(moved), before);
        HttpRequest moveAssigned(HttpMethod::Get, nullptr);
        moveAssigned = std::move(moved);
        QCOMPARE(described(moveAssigned), before);
        QCOMPARE(described(original), before);
    }

    void aCopyOwnsNoPointer()
    {
        HttpClient client;
        auto multiPart = std::make_unique<QHttpMultiPart>();
        const QPointer<QHttpMultiPart> alive(multiPart.get());
        {
            HttpRequest request(HttpMethod::Post, &client);
            request.multiPartBody(multiPart.get());
            const HttpRequest copy(request);
        }
        QVERIFY(!alive.isNull());
    }

    void aDownloadIsAnsweredByAResponseThatIsTheCallers()
    {
        HttpClient client;
        HttpRequest request(HttpMethod::Get, &client);
        request.url("http://localhost:%1/"_s.arg(HttpTesting::deadPort()))
            .download("/nowhere/file"_s);
        const std::unique_ptr<HttpResponse> response(request.send());
        QVERIFY(response);
        QCOMPARE(response->parent(), nullptr); // until its reply is there
        QCOMPARE(response->request().fields.reply, nullptr);
        QCOMPARE(response->request().fields.downloadFilePath, "/nowhere/file"_s);
        QCOMPARE(client.findChildren<QNetworkReply *>().size(), 0); // the probe is another client's
    }
};

QTEST_GUILESS_MAIN(TestHttpRequest)
#include "tst_httprequest.moc"
