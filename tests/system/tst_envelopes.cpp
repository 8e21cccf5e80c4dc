#include "tests/system/localservice.h"
#include "tests/system/serviceaddress.h"
#include "tests/system/serviceclient.h"

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QtTest>

#include <limits>

namespace {

QByteArray bytes(const QJsonObject &object) { return QJsonDocument(object).toJson(); }

// As the service writes it.
QByteArray bytesOfRefusal(int code, const QByteArray &message)
{
    return QJsonDocument({{QStringLiteral("code"), code},
                          {QStringLiteral("message"), QString::fromUtf8(message)}})
        .toJson(QJsonDocument::Compact);
}

QString hello() { return QStringLiteral("Hello."); }

} // namespace

/// What the service answers to a request that it cannot serve: an envelope that says why.
class TestEnvelopes : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(m_service.start());
        m_client.reset(new ServiceClient(m_service.authority()));
    }

    void aGoodRequestIsServed()
    {
        const auto reply = m_client->post(QStringLiteral("asr/process"),
                                          ServiceClient::speech("voiceSynthesis", hello()),
                                          ServiceClient::authorization());
        QVERIFY2(reply.isSuccess(), reply.body.constData());
        const QByteArray audio = QByteArray::fromBase64(
            reply.data().value(QLatin1String("audio")).toString().toLatin1());
        QVERIFY(audio.startsWith("RIFF"));
    }

    void aTextIsSpokenWithoutItsAccents_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("plain");
        QTest::newRow("accents") << QStringLiteral("Café naïve Ångström")
                                 << QStringLiteral("Cafe naive Angstrom");
        QTest::newRow("accents of their own")
            << QStringLiteral("Cafe\u0301 nai\u0308ve") << QStringLiteral("Cafe naive");
        QTest::newRow("letters of two")
            << QStringLiteral("ﬁve Straßen, Æsop") << QStringLiteral("five Strassen, Aesop");
        QTest::newRow("wide") << QStringLiteral("Ｒｏｏｍ １２") << QStringLiteral("Room 12");
        QTest::newRow("soft hyphen")
            << QStringLiteral("for\u00adward") << QStringLiteral("forward");
        QTest::newRow("quotes") << QStringLiteral("Don’t say “no”… ever")
                                << QStringLiteral("Don't say \"no\"... ever");
        QTest::newRow("others") << QStringLiteral("one 二 two😀") << QStringLiteral("one   two  ");
    }
    void aTextIsSpokenWithoutItsAccents()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, plain);
        const auto spoken = [&](const QString &words) {
            return m_client
                ->post(QStringLiteral("asr/freeProcess"),
                       ServiceClient::speech("voiceSynthesis", words))
                .data()
                .value(QLatin1String("audio"))
                .toString();
        };
        QVERIFY(!spoken(plain).isEmpty());
        QVERIFY(spoken(text) == spoken(plain)); // too long to print
    }

    void aBadRequestIsRefusedInAnEnvelope_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("authorization");
        tokenRows();
        malformedRows();
        speechRows();
        linkRows();
    }
    void aBadRequestIsRefusedInAnEnvelope()
    {
        QFETCH(const QString, operation);
        QFETCH(const QByteArray, body);
        QFETCH(const QByteArray, authorization);
        const auto reply = m_client->post(operation, body, authorization);
        QVERIFY2(reply.isRefusal(), QByteArray::number(reply.status) + ' ' + reply.body);
    }

    void aRequestFromAPageInABrowserIsRefused_data()
    {
        QTest::addColumn<QByteArray>("header");
        QTest::addColumn<int>("code");
        QTest::newRow("no page") << QByteArray() << 0;
        QTest::newRow("the user's own") << QByteArray("Sec-Fetch-Site: none\r\n") << 0;
        QTest::newRow("another origin") << QByteArray("Origin: https://other.example\r\n") << 403;
        QTest::newRow("an origin that is kept secret") << QByteArray("Origin: null\r\n") << 403;
        QTest::newRow("another site") << QByteArray("Sec-Fetch-Site: cross-site\r\n") << 403;
        QTest::newRow("the same site") << QByteArray("Sec-Fetch-Site: same-site\r\n") << 403;
    }
    void aRequestFromAPageInABrowserIsRefused()
    {
        QFETCH(const QByteArray, header);
        QFETCH(const int, code);
        const auto reply =
            m_client->verbatim("GET /ucenter/public/index.php/v1/login/getMpQrCode", header);
        QCOMPARE(reply.status, 200);
        QCOMPARE(reply.code(), code);
    }

    void aBodyMayBeNestedToALimit_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<int>("arrays");
        QTest::addColumn<QByteArray>("message");
        const QByteArray notText = "\"feature\" has to be a string";
        const QByteArray tooDeep = "the body is nested too deeply";
        QTest::newRow("at the limit") << QByteArray() << 64 << notText;
        QTest::newRow("deeper") << QByteArray() << 65 << tooDeep;
        QTest::newRow("very deep") << QByteArray() << 200000 << tooDeep;
        const QByteArray opened = "\"a[{\\\"[{\\\\\":[\"[[{{\\\\\\\"[[\\\\\"],";
        QTest::newRow("a string with brackets, at the limit") << opened << 64 << notText;
        const QByteArray closed = "\"a]}\\\"]}\\\\\":[\"]]}}\\\\\\\"]]\\\\\"],";
        QTest::newRow("a string with brackets, deeper") << closed << 65 << tooDeep;
    }
    void aBodyMayBeNestedToALimit()
    {
        QFETCH(const QByteArray, before);
        QFETCH(const int, arrays);
        QFETCH(const QByteArray, message);
        const QByteArray body =
            '{' + before + "\"feature\":" + QByteArray(arrays, '[') + QByteArray(arrays, ']') + '}';
        const auto reply =
            m_client->post(QStringLiteral("asr/process"), body, ServiceClient::authorization());
        QCOMPARE(reply.body, bytesOfRefusal(400, message));
    }

    void anAddressMayBeLongToALimit_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("message");
        QTest::newRow("at the limit") << 2048 << 404 << QByteArray("there is no such operation");
        QTest::newRow("longer") << 2049 << 414 << QByteArray("the address is too long");
    }
    void anAddressMayBeLongToALimit()
    {
        QFETCH(const int, length);
        QFETCH(const int, status);
        QFETCH(const QByteArray, message);
        const auto reply =
            m_client->verbatim("GET /nothing?" + QByteArray(length - 9, 'a'), QByteArray());
        QCOMPARE(reply.status, status);
        QCOMPARE(reply.body, bytesOfRefusal(status, message));
    }

    void aBodyMayBeLargeToALimit_data()
    {
        QTest::addColumn<int>("size");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("refusal");
        const int kib = 1024;
        QTest::newRow("at the limit")
            << 512 * kib << 200 << bytesOfRefusal(400, "\"feature\" is missing");
        const QByteArray tooLarge = bytesOfRefusal(413, "the body is larger than 512 KiB");
        QTest::newRow("larger") << 512 * kib + 1 << 413 << tooLarge;
        QTest::newRow("much larger") << 65 * kib * kib << 413 << tooLarge;
    }
    void aBodyMayBeLargeToALimit()
    {
        QFETCH(const int, size);
        const QByteArray body = "{\"a\":\"" + QByteArray(size - 8, 'a') + "\"}";
        const auto reply =
            m_client->post(QStringLiteral("asr/process"), body, ServiceClient::authorization());
        QTEST(reply.status, "status");
        QTEST(reply.body, "refusal");
        aGoodRequestIsServed();
    }

    // If each object had those before it looked at, eight times as many would take 64 times as
    // long.
    void theTimeToReadObjectsGrowsWithTheirNumber()
    {
        QCOMPARE(sendObjects(170000).body, bytesOfRefusal(400, "\"feature\" is missing"));
        const qint64 few = nanosecondsFor(170000 / 8);
        const qint64 many = nanosecondsFor(170000);
        QVERIFY2(many < 24 * few, QByteArray::number(many) + " to " + QByteArray::number(few));
    }

private:
    ServiceClient::Reply sendObjects(int number)
    {
        const QByteArray body = "{\"a\":[{}" + QByteArray(",{}").repeated(number) + "]}";
        return m_client->post(QStringLiteral("asr/freeProcess"), body,
                              ServiceClient::authorization());
    }

    // The best of three, since others may keep the machine busy.
    qint64 nanosecondsFor(int objects)
    {
        qint64 best = std::numeric_limits<qint64>::max();
        for (int round = 0; round < 3; ++round) {
            QElapsedTimer elapsed;
            elapsed.start();
            sendObjects(objects);
            best = qMin(best, elapsed.nsecsElapsed());
        }
        return best;
    }

    // A row of aBadRequestIsRefusedInAnEnvelope().
    static void row(const char *name, const char *operation, const QByteArray &body,
                    const QByteArray &authorization = ServiceClient::authorization())
    {
        QTest::newRow(name) << QString::fromLatin1(operation) << body << authorization;
    }

    static void tokenRows()
    {
        const QByteArray right = ServiceClient::authorization();
        const QByteArray good = bytes(ServiceClient::speech("voiceSynthesis", hello()));
        row("wrong token", "asr/process", good, "Bearer 1");
        row("no token", "asr/process", good, {});
        row("empty token", "asr/process", good, "Bearer ");
        row("token without scheme", "asr/process", good, right.mid(int(qstrlen("Bearer "))));
        row("token with a tail", "asr/process", good, right + "0");
        row("result, wrong token", "asr/getProcessResult",
            "{\"feature\":\"longVoiceSynthesis\",\"task_id\":\"x\"}", "Bearer 1");
    }

    static void malformedRows()
    {
        row("no JSON", "asr/process", "{\"feature\":");
        row("no body", "asr/process", {});
        row("an array", "asr/process", "[]");
        row("no UTF-8", "asr/process", "{\"feature\":\"\xff\xfe\"}");
        row("no feature", "asr/process", "{}");
        row("feature is a number", "asr/process", "{\"feature\":1}");
        row("unknown feature", "asr/process", bytes(ServiceClient::speech("singing", hello())));
        row("unknown operation", "asr/sing",
            bytes(ServiceClient::speech("voiceSynthesis", hello())));
        row("no JSON, anonymous", "asr/freeProcess", "{", {});
        row("unknown feature, anonymous", "asr/freeProcess",
            bytes(ServiceClient::speech("longVoiceSynthesis", hello())), {});
        row("unknown feature, result", "asr/getProcessResult",
            "{\"feature\":\"singing\",\"task_id\":\"x\"}");
        row("unknown task, result", "asr/getProcessResult",
            "{\"feature\":\"longVoiceSynthesis\",\"task_id\":\"x\"}");
    }

    static void speechRows()
    {
        row("empty text, anonymous", "asr/freeProcess",
            bytes(ServiceClient::speech("voiceSynthesis", QString())), {});
        for (const char *feature : {"voiceSynthesis", "longVoiceSynthesis"}) {
            const auto featureRow = [feature](const char *what, const QJsonObject &body) {
                row((QByteArray(feature) + ", " + what).constData(), "asr/process", bytes(body));
            };
            featureRow("empty text", ServiceClient::speech(feature, QString()));
            featureRow("text of blanks", ServiceClient::speech(feature, QStringLiteral(" \n\t")));
            QJsonObject voice = ServiceClient::speech(feature, hello());
            voice.insert(QStringLiteral("voice"), QStringLiteral("../rms"));
            featureRow("unknown voice", voice);
            QJsonObject noText = ServiceClient::speech(feature, hello());
            noText.remove(QStringLiteral("text"));
            featureRow("no text", noText);
        }
    }

    static void linkRows()
    {
        // What looks like the service's own address up to the "@" is a user's name there.
        const QString disguised =
            QStringLiteral("%1@elsewhere.example/storage/a.wav").arg(serviceAddress());
        const QStringList links{QString(),
                                QStringLiteral("nonsense"),
                                QStringLiteral("file:///etc/passwd"),
                                QStringLiteral("https://elsewhere.example/a.wav"),
                                QStringLiteral("https://localhost/storage/speech/a.wav"),
                                disguised};
        for (const char *feature : {"inWord", "recordingRecognition"}) {
            for (const QString &link : links)
                row(qPrintable(QStringLiteral("%1, link \"%2\"").arg(QLatin1String(feature), link)),
                    "asr/process",
                    bytes({{QStringLiteral("feature"), QString::fromLatin1(feature)},
                           {QStringLiteral("file_link"), link}}));
        }
    }

    LocalService m_service;
    QScopedPointer<ServiceClient> m_client;
};

QTEST_GUILESS_MAIN(TestEnvelopes)
#include "tst_envelopes.moc"
