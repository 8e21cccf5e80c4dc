#include "tests/support/patience.h"
#include "tests/system/localservice.h"
#include "tests/system/serviceaddress.h"
#include "tests/system/signinsteps.h"

#include <QDataStream>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QRandomGenerator>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTimer>
#include <QUrl>
#include <QtTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <vector>

namespace {

constexpr int rate = 8000; // Hz

/// A recording of noise, a second of it after each half second of silence.
QByteArray noise(int seconds)
{
    QByteArray samples(seconds * rate * 2, '\0');
    QRandomGenerator generator(1);
    for (int i = 0; i < samples.size(); ++i) {
        if (i % (3 * rate) >= rate)
            samples[i] = static_cast<char>(generator.generate() & 0x1fU);
    }
    QByteArray wave;
    QDataStream stream(&wave, QIODevice::WriteOnly);
    stream.setByteOrder(QDataStream::LittleEndian);
    stream.writeRawData("RIFF", 4);
    stream << quint32(36 + samples.size());
    stream.writeRawData("WAVEfmt ", 8);
    stream << quint32(16) << quint16(1) << quint16(1) << quint32(rate) << quint32(2 * rate)
           << quint16(2) << quint16(16);
    stream.writeRawData("data", 4);
    stream << quint32(samples.size());
    return wave + samples;
}

QJsonObject recognition(const QString &address, const char *feature)
{
    return {{QStringLiteral("feature"), QString::fromLatin1(feature)},
            {QStringLiteral("file_link"), address}};
}

QJsonObject synthesis()
{
    return {{QStringLiteral("feature"), QStringLiteral("voiceSynthesis")},
            {QStringLiteral("text"), QStringLiteral("Come back soon. ").repeated(60)}};
}

/// Connections that stay open and never complete a request.
class Crowd
{
    Q_DISABLE_COPY(Crowd)

public:
    /// They send @p beginning, of a request, byte by byte.
    Crowd(int count, bool isEncrypted, const QByteArray &beginning, const QSslConfiguration &tls)
    {
        const QUrl service(serviceAddress());
        const auto port = static_cast<quint16>(service.port());
        while (static_cast<int>(m_sockets.size()) < count) {
            auto socket = std::make_unique<QSslSocket>();
            socket->setSslConfiguration(tls);
            if (isEncrypted)
                socket->connectToHostEncrypted(service.host(), port);
            else
                socket->connectToHost(service.host(), port);
            m_sockets.push_back(std::move(socket));
        }
        QObject::connect(&m_drip, &QTimer::timeout, &m_drip, [this, beginning] {
            for (const auto &socket : m_sockets)
                if (socket->isEncrypted())
                    socket->write(beginning.mid(m_sent, 1));
            ++m_sent;
        });
        if (!beginning.isEmpty())
            m_drip.start(50);
    }

    /// Whether every connection has been made or ended.
    bool isThere() const
    {
        return std::all_of(m_sockets.begin(), m_sockets.end(), [](const auto &socket) {
            return socket->state() != QAbstractSocket::HostLookupState
                   && socket->state() != QAbstractSocket::ConnectingState;
        });
    }

private:
    std::vector<std::unique_ptr<QSslSocket>> m_sockets;
    QTimer m_drip;
    int m_sent = 0;
};

} // namespace

/// The local service among many clients, among slow ones, and among those that go early.
class TestServiceLoad : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_service.reset(new LocalService);
        QVERIFY(m_service->start());
        m_steps.reset(new SignInSteps(m_service.data()));
    }

    void connectionsWithoutARequestKeepNobodyOut_data()
    {
        QTest::addColumn<bool>("isEncrypted");
        QTest::addColumn<QByteArray>("beginning");
        QTest::newRow("silent") << false << QByteArray();
        QTest::newRow("encrypted, silent") << true << QByteArray();
        QTest::newRow("dripping headers")
            << true << "GET / HTTP/1.1\r\n" + QByteArray("Header: value\r\n").repeated(100);
    }
    void connectionsWithoutARequestKeepNobodyOut()
    {
        QFETCH(const bool, isEncrypted);
        QFETCH(const QByteArray, beginning);
        const Crowd crowd(300, isEncrypted, beginning, trusting());
        TRY_VERIFY(crowd.isThere());
        QElapsedTimer elapsed;
        elapsed.start();
        for (int i = 0; i < 3; ++i)
            QVERIFY(SignInSteps(m_service.data()).beginQr().isSuccess());
        QVERIFY2(elapsed.elapsed() < 10000, QByteArray::number(elapsed.elapsed()));
    }

    void aRequestThatHasNoEndEndsItsConnection_data()
    {
        QTest::addColumn<QByteArray>("beginning");
        QTest::addColumn<QByteArray>("part");
        const QByteArray a(10000, 'a');
        const QByteArray post = "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";
        QTest::newRow("address") << QByteArray("GET /") << a;
        QTest::newRow("header") << QByteArray("GET / HTTP/1.1\r\nName: ") << a;
        QTest::newRow("headers") << QByteArray("GET / HTTP/1.1\r\n") << QByteArray("Name: a\r\n");
        QTest::newRow("chunk extension") << post + "1;" << a;
        QTest::newRow("trailers") << post + "0\r\n" << QByteArray("Name: a\r\n");
    }
    void aRequestThatHasNoEndEndsItsConnection()
    {
        QFETCH(const QByteArray, beginning);
        QFETCH(const QByteArray, part);
        const QUrl service(serviceAddress());
        QSslSocket socket;
        socket.setSslConfiguration(trusting());
        socket.connectToHostEncrypted(service.host(), static_cast<quint16>(service.port()));
        QVERIFY(socket.waitForEncrypted(patienceMs));
        socket.write(beginning);
        qint64 sent = 0;
        const QByteArray parts = part.repeated(100000 / part.size());
        while (socket.state() == QAbstractSocket::ConnectedState && sent < 100LL * 1000 * 1000) {
            sent += socket.write(parts);
            socket.waitForBytesWritten(patienceMs);
        }
        QCOMPARE(socket.state(), QAbstractSocket::UnconnectedState);
        QVERIFY(m_steps->beginQr().isSuccess());
    }

    void aConnectionThatIsWorkedForIsKeptInACrowd()
    {
        ask(synthesis());
        TRY_COMPARE(m_sent, 1);
        const Crowd crowd(300, false, QByteArray(), trusting());
        TRY_VERIFY(crowd.isThere());
        QVERIFY(m_steps->beginQr().isSuccess());
        TRY_COMPARE(answered(0), 1);
    }

    void recognitionsBeyondAFewAreRefusedAndKeepNobodyFromSigningIn()
    {
        const QString recording = put(noise(60));
        for (int i = 0; i < 20; ++i)
            ask(recognition(recording, "inWord"));
        TRY_COMPARE(answered(429), 12);
        QElapsedTimer elapsed;
        elapsed.start();
        QVERIFY(m_steps->beginQr().isSuccess());
        QVERIFY(!m_steps->signIn(QStringLiteral("12345678")).isEmpty());
        QVERIFY2(elapsed.elapsed() < 3000, QByteArray::number(elapsed.elapsed()));
    }

    void synthesesBeyondAFewAreRefusedAndKeepNobodyFromSigningIn()
    {
        for (int i = 0; i < 40; ++i)
            ask(synthesis());
        TRY_VERIFY(answered(429) > 0);
        QElapsedTimer elapsed;
        elapsed.start();
        QVERIFY(m_steps->beginQr().isSuccess());
        QVERIFY(!m_steps->signIn(QStringLiteral("12345678")).isEmpty());
        QVERIFY2(elapsed.elapsed() < 3000, QByteArray::number(elapsed.elapsed()));
    }

    void workForClientsThatHaveGoneEndsEarly_data()
    {
        QTest::addColumn<QByteArray>("feature");
        QTest::newRow("recognition") << QByteArray("inWord");
        QTest::newRow("synthesis") << QByteArray("voiceSynthesis");
    }
    void workForClientsThatHaveGoneEndsEarly()
    {
        QFETCH(const QByteArray, feature);
        const QJsonObject request =
            feature == "inWord" ? recognition(put(noise(60)), "inWord") : synthesis();
        for (int i = 0; i < 8; ++i)
            ask(request);
        TRY_COMPARE(m_sent, 8);
        m_replies.clear();
        // Each has a line in the log with the code of a failure: none was worked on to its end.
        TRY_COMPARE(m_service->log().count(feature + " 200 500 "), 8);
    }

    void aBodyThatNobodyReadsIsNoRequest()
    {
        const QByteArray body = "GET /smuggled HTTP/1.1\r\nHost: localhost\r\n\r\n";
        QSslSocket socket;
        socket.setSslConfiguration(trusting());
        const QUrl service(serviceAddress());
        socket.connectToHostEncrypted(service.host(), static_cast<quint16>(service.port()));
        TRY_VERIFY(socket.isEncrypted());
        socket.write("GET /convert/public/index.php/v1/asr/getVoice HTTP/1.1\r\nHost: localhost\r\n"
                     "Content-Length: "
                     + QByteArray::number(body.size()) + "\r\n\r\n" + body);
        TRY_COMPARE(socket.state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(socket.readAll().count("HTTP/1.1 "), 1);
        QVERIFY(!m_service->log().contains("smuggled"));
    }

    void itEndsInTimeWhateverItIsDoing()
    {
        const QString recording = put(noise(3590));
        QVERIFY(m_steps->client()
                    .post(QStringLiteral("asr/process"),
                          recognition(recording, "recordingRecognition"),
                          ServiceClient::authorization())
                    .isSuccess());
        QElapsedTimer elapsed;
        elapsed.start();
        QCOMPARE(m_service->stop(SIGTERM), 0);
        QVERIFY2(elapsed.elapsed() < 5000, QByteArray::number(elapsed.elapsed()));
        QVERIFY(m_service->start());
    }

    void cleanup()
    {
        m_replies.clear();
        m_sent = 0;
    }

private:
    QSslConfiguration trusting() const
    {
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates(QSslCertificate::fromPath(m_service->authority()));
        return tls;
    }

    // Each on a connection of its own.
    void ask(const QJsonObject &body)
    {
        auto manager = std::make_shared<QNetworkAccessManager>();
        QNetworkRequest request(
            QUrl(serviceAddress() + QStringLiteral("/convert/public/index.php/v1/asr/process")));
        request.setSslConfiguration(trusting());
        request.setRawHeader("Authorization", ServiceClient::authorization());
        request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
        QNetworkReply *const reply =
            manager->post(request, QJsonDocument(body).toJson(QJsonDocument::Compact));
        connect(reply, &QNetworkReply::uploadProgress, this,
                [this, reply](qint64 sent, qint64 all) {
                    m_sent += reply->property("isSent").toBool() || sent < all || all == 0 ? 0 : 1;
                    reply->setProperty("isSent", sent == all && all > 0);
                });
        m_replies.push_back({manager, std::shared_ptr<QNetworkReply>(reply)});
    }

    // The replies whose envelope has @p code.
    int answered(int code) const
    {
        return static_cast<int>(
            std::count_if(m_replies.begin(), m_replies.end(), [code](const auto &pair) {
                const QByteArray bytes = pair.second->peek(64 * 1024 * 1024);
                return pair.second->isFinished()
                       && QJsonDocument::fromJson(bytes).object().value(QLatin1String("code"))
                              == QJsonValue(code);
            }));
    }

    // The address of @p recording in the storage.
    QString put(const QByteArray &recording)
    {
        const QJsonObject credentials = m_steps->client().credentials();
        const auto text = [&](const char *key) {
            return credentials.value(QLatin1String(key)).toString();
        };
        QString address = QStringLiteral("%1/%2/%3/noise.wav")
                              .arg(text("endpoint"), text("bucketName"), text("dir"));
        m_steps->client().put(address, recording, text("SecurityToken"));
        return address;
    }

    QScopedPointer<LocalService> m_service;
    QScopedPointer<SignInSteps> m_steps;
    // A reply goes before its manager.
    std::vector<std::pair<std::shared_ptr<QNetworkAccessManager>, std::shared_ptr<QNetworkReply>>>
        m_replies;
    int m_sent = 0; // requests of which all was sent
};

QTEST_GUILESS_MAIN(TestServiceLoad)
#include "tst_serviceload.moc"
