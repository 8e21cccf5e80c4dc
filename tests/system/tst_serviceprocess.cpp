#include "tests/support/patience.h"
#include "tests/system/localservice.h"
#include "tests/system/program.h"
#include "tests/system/serviceclient.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QNetworkInterface>
#include <QScopeGuard>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <QUrl>
#include <QtTest>

#include <csignal>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

quint16 servicePort()
{
    return static_cast<quint16>(QUrl(QStringLiteral(SERVICE_BASE_ADDRESS)).port());
}

bool accepts(const QHostAddress &address)
{
    QTcpSocket socket;
    socket.connectToHost(address, servicePort());
    return socket.waitForConnected(patienceMs);
}

/// The bytes that wait to be read from @p pipe.
int available(int pipe)
{
    int count = 0;
    return ioctl(pipe, FIONREAD, &count) == 0 ? count : -1;
}

/// Writes to @p pipe until it takes no more; the bytes that it took.
int fill(int pipe)
{
    int count = 0;
    while (write(pipe, "x", 1) == 1)
        ++count;
    return count;
}

QString objectAddress(const QJsonObject &credentials)
{
    return QStringLiteral("%1/speech/%2/whispered.wav")
        .arg(credentials.value(QLatin1String("endpoint")).toString(),
             credentials.value(QLatin1String("dir")).toString());
}

/// Settings of OpenSSL that allow whatever it can do.
QByteArray lenientTls()
{
    return "openssl_conf = all\n[all]\nssl_conf = ssl\n[ssl]\nsystem_default = lenient\n"
           "[lenient]\nMinProtocol = TLSv1\nCipherString = DEFAULT@SECLEVEL=0\n";
}

} // namespace

/// The local service as a process: how it begins, what it writes, where it listens, how it ends.
class TestServiceProcess : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itSaysInOneLineWhereItListens()
    {
        LocalService service;
        QVERIFY(service.start());
        QCOMPARE(service.readyLine(), "vo-localservice: listening on " SERVICE_BASE_ADDRESS
                                      ", authority "
                                          + service.authority().toUtf8() + '\n');
    }

    void aSignalEndsItWithStatusZero_data()
    {
        QTest::addColumn<int>("number");
        QTest::newRow("SIGTERM") << SIGTERM;
        QTest::newRow("SIGINT") << SIGINT;
    }
    void aSignalEndsItWithStatusZero()
    {
        QFETCH(const int, number);
        LocalService service;
        QVERIFY(service.start());
        QCOMPARE(service.stop(number), 0);
        QVERIFY(!accepts(QHostAddress(QHostAddress::LocalHost)));
    }

    void aSignalEndsItAlsoWithAConnectionOpenAndATaskRunning()
    {
        LocalService service;
        QVERIFY(service.start());
        QTcpSocket idle;
        idle.connectToHost(QHostAddress(QHostAddress::LocalHost), servicePort());
        QVERIFY(idle.waitForConnected(patienceMs));
        ServiceClient client(service.authority());
        const QJsonObject task = ServiceClient::speech("longVoiceSynthesis",
                                                       QStringLiteral("Come back. ").repeated(200));
        QVERIFY(client.post(QStringLiteral("asr/process"), task, ServiceClient::authorization())
                    .isSuccess());
        QCOMPARE(service.stop(SIGTERM), 0);
    }

    void itServesOnAtOnceWhenNobodyReads_data()
    {
        QTest::addColumn<bool>("isError");
        QTest::newRow("standard output") << false;
        QTest::newRow("standard error") << true;
    }
    void itServesOnAtOnceWhenNobodyReads()
    {
        QFETCH(const bool, isError);
        const QTemporaryDir folder;
        const QString name = folder.filePath(QStringLiteral("pipe"));
        const QByteArray pipe = QFile::encodeName(name);
        QCOMPARE(mkfifo(pipe.constData(), S_IRUSR | S_IWUSR), 0);
        const int unread = open(pipe.constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        QVERIFY(unread >= 0);
        QProcess service;
        if (isError)
            service.setStandardErrorFile(name);
        else
            service.setStandardOutputFile(name);
        service.start(LocalService::program(),
                      {QStringLiteral("--port"), QString::number(servicePort()),
                       QStringLiteral("--data"), folder.filePath(QStringLiteral("data"))});
        // The line that says that it is ready.
        TRY_VERIFY(available(unread) > 0 || service.bytesAvailable() > 0);

        QVERIFY(fill(unread) > 0);
        ServiceClient client(folder.filePath(QStringLiteral("data/tls/authority.pem")));
        QElapsedTimer elapsed;
        elapsed.start();
        for (int i = 0; i < 60; ++i)
            QVERIFY(client
                        .get(QStringLiteral(SERVICE_BASE_ADDRESS
                                            "/ucenter/public/index.php/v1/login/getMpQrCode"))
                        .isSuccess());
        QVERIFY2(elapsed.elapsed() < 2000, QByteArray::number(elapsed.elapsed()));
        service.terminate();
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitStatus(), QProcess::NormalExit);
        QCOMPARE(service.exitCode(), 0);
        close(unread);
    }

    // A terminal is ready for one more byte long after a line does not fit.
    void itServesOnWhenATerminalIsNotRead()
    {
        const int terminal = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
        QVERIFY(terminal >= 0 && grantpt(terminal) == 0 && unlockpt(terminal) == 0);
        const QTemporaryDir folder;
        QProcess service;
        service.setStandardErrorFile(QFile::decodeName(ptsname(terminal)));
        service.start(LocalService::program(),
                      {QStringLiteral("--port"), QString::number(servicePort()),
                       QStringLiteral("--data"), folder.filePath(QStringLiteral("data"))});
        TRY_VERIFY(service.bytesAvailable() > 0);
        ServiceClient client(folder.filePath(QStringLiteral("data/tls/authority.pem")));
        for (int i = 0; i < 600; ++i)
            QVERIFY(client
                        .get(QStringLiteral(SERVICE_BASE_ADDRESS
                                            "/convert/public/index.php/v1/upload/getsignsts"))
                        .isSuccess());
        service.terminate();
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitStatus(), QProcess::NormalExit);
        QCOMPARE(service.exitCode(), 0);
        close(terminal);
    }

    void helpThatCannotBePrintedIsAFailure()
    {
        QProcess service;
        service.setStandardOutputFile(QStringLiteral("/dev/full"));
        service.start(LocalService::program(), {QStringLiteral("--help")});
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitStatus(), QProcess::NormalExit);
        QCOMPARE(service.exitCode(), 1);
    }

    void itDoesWithoutStandardFiles()
    {
        const QTemporaryDir folder;
        const QString authority = folder.filePath(QStringLiteral("data/tls/authority.pem"));
        QProcess service;
        service.start(QStringLiteral("bash"),
                      {QStringLiteral("-c"), QStringLiteral("exec \"$@\" >&- 2>&-"),
                       QStringLiteral("bash"), LocalService::program(), QStringLiteral("--port"),
                       QString::number(servicePort()), QStringLiteral("--data"),
                       folder.filePath(QStringLiteral("data"))});
        TRY_VERIFY(accepts(QHostAddress(QHostAddress::LocalHost)));
        ServiceClient client(authority);
        QVERIFY(client
                    .get(QStringLiteral(SERVICE_BASE_ADDRESS
                                        "/ucenter/public/index.php/v1/login/getMpQrCode"))
                    .isSuccess());
        // It would have taken the place of one of them.
        const QFileInfo first(folder.filePath(QStringLiteral("data/lock")));
        QVERIFY(first.exists());
        QCOMPARE(first.size(), 0);
        service.terminate();
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitCode(), 0);
    }

    void itListensOnLoopbackOnly()
    {
        LocalService service;
        QVERIFY(service.start());
        QVERIFY(accepts(QHostAddress(QHostAddress::LocalHost)));
        // Reached by whoever listens everywhere, though it is loopback itself.
        QVERIFY(!accepts(QHostAddress(QStringLiteral("127.0.0.2"))));
        const auto addresses = QNetworkInterface::allAddresses();
        for (const QHostAddress &address : addresses)
            QVERIFY2(address.isLoopback() || !accepts(address), qPrintable(address.toString()));
    }

    void aPortThatIsTakenIsToldInOneLine()
    {
        LocalService service;
        QVERIFY(service.start());
        QTemporaryDir folder;
        QProcess second;
        second.start(LocalService::program(), arguments("--development-token 1 --port")
                                                  << QString::number(servicePort())
                                                  << QStringLiteral("--data") << folder.path());
        QVERIFY(second.waitForFinished(patienceMs));
        QCOMPARE(second.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.exitCode(), 1);
        QCOMPARE(second.readAllStandardOutput(), QByteArray());
        const QByteArray err = second.readAllStandardError();
        QVERIFY2(err.startsWith("vo-localservice: ") && err.count('\n') == 1, err.constData());
    }

    void aThreadThatCannotBeMadeIsToldInOneLine_data()
    {
        QTest::addColumn<int>("threads");
        QTest::newRow("no worker") << 0;
        QTest::newRow("one worker of two") << 1;
        QTest::newRow("nobody to serve") << 2;
        QTest::newRow("few to serve") << 10;
        QTest::newRow("nobody to listen") << 258;
    }
    void aThreadThatCannotBeMadeIsToldInOneLine()
    {
#ifdef __SANITIZE_ADDRESS__
        QSKIP("AddressSanitizer needs more addresses than are left here", );
#endif
        QFETCH(const int, threads);
        const QTemporaryDir folder;
        QProcess service;
        // The stack of a thread takes a GiB of addresses, and half of one is enough for the rest.
        const qint64 gib = qint64(1) << 30;
        service.start(QStringLiteral("prlimit"),
                      {QStringLiteral("--stack=%1").arg(gib),
                       QStringLiteral("--as=%1").arg(threads * gib + gib / 2),
                       LocalService::program(), QStringLiteral("--port"), QStringLiteral("0"),
                       QStringLiteral("--data"), folder.path()});
        QVERIFY(service.waitForFinished(patienceMs));
        QCOMPARE(service.exitStatus(), QProcess::NormalExit);
        QCOMPARE(service.exitCode(), 1);
        QCOMPARE(service.readAllStandardOutput(), QByteArray());
        QCOMPARE(service.readAllStandardError(),
                 QByteArray("vo-localservice: Resource temporarily unavailable\n"));
    }

    void bothCertificatesAreValidFor800Days()
    {
        LocalService service;
        QVERIFY(service.start());
        const QDateTime end = QDateTime::currentDateTimeUtc().addDays(800);
        for (const char *name : {"tls/authority.pem", "tls/server.pem"}) {
            const auto certificates =
                QSslCertificate::fromPath(service.dataFile(QString::fromLatin1(name)));
            QCOMPARE(certificates.size(), 1);
            QVERIFY2(qAbs(certificates.first().expiryDate().secsTo(end)) <= 60, name);
        }
    }

    void itSpeaksTls12AtLeast_data()
    {
        QTest::addColumn<QString>("version");
        QTest::addColumn<bool>("isSpoken");
        QTest::newRow("1.1") << QStringLiteral("-tls1_1") << false;
        QTest::newRow("1.2") << QStringLiteral("-tls1_2") << true;
        QTest::newRow("1.3") << QStringLiteral("-tls1_3") << true;
    }
    // Whatever the machine allows.
    void itSpeaksTls12AtLeast()
    {
        QFETCH(const QString, version);
        QFETCH(const bool, isSpoken);
        QTemporaryFile settings;
        QVERIFY(settings.open() && settings.write(lenientTls()) > 0 && settings.flush());
        const auto usual = qScopeGuard([] { qunsetenv("OPENSSL_CONF"); });
        qputenv("OPENSSL_CONF", QFile::encodeName(settings.fileName()));
        LocalService service;
        QVERIFY(service.start());
        QProcess client;
        client.setStandardInputFile(QProcess::nullDevice());
        client.start(QStringLiteral("openssl"),
                     {QStringLiteral("s_client"), version, QStringLiteral("-connect"),
                      QStringLiteral("127.0.0.1:%1").arg(servicePort())});
        QVERIFY(client.waitForFinished(patienceMs));
        QCOMPARE(client.exitCode(), isSpoken ? 0 : 1);
        QCOMPARE(client.readAllStandardError().contains("alert protocol version"), !isSpoken);
    }

    void aConnectionServesAThousandRequests()
    {
        LocalService service;
        QVERIFY(service.start());
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates(QSslCertificate::fromPath(service.authority()));
        QSslSocket socket;
        socket.setSslConfiguration(tls);
        socket.connectToHostEncrypted(QStringLiteral("localhost"), servicePort());
        QVERIFY(socket.waitForEncrypted(patienceMs));
        const auto ask = [&] {
            socket.write("GET /nothing HTTP/1.1\r\nHost: localhost\r\n\r\n");
            QByteArray reply;
            while (!reply.endsWith('}') && socket.waitForReadyRead(patienceMs))
                reply += socket.readAll();
            return reply;
        };
        for (int i = 1; i < 1000; ++i)
            QVERIFY(!ask().contains("Connection: close"));
        QVERIFY(ask().contains("Connection: close"));
    }

    void theLogHasALineForEveryRequestAndNoSecret()
    {
        LocalService service;
        QVERIFY(service.start());
        const QTemporaryDir folder;
        const QString audio = folder.filePath(QStringLiteral("audio.wav"));
        QCOMPARE(vospeak(arguments("say hello -o") + QStringList{audio} + service.access()).status,
                 0);
        QCOMPARE(vospeak(QStringList{QStringLiteral("recognize"), audio} + service.access()).status,
                 0);
        ServiceClient client(service.authority());
        const QJsonObject credentials = client.credentials();
        const QByteArray secret = "Bearer 1234512345";
        QVERIFY(client.post(QStringLiteral("asr/process"), QJsonObject(), secret).isRefusal());
        QVERIFY(client.get(objectAddress(credentials)).isRefusal());
        QVERIFY(client
                    .get(objectAddress(credentials)
                             .replace(QLatin1String("/storage/"), QLatin1String("//storage//")))
                    .isRefusal());

        // That sign-in is bypassed; speaking; credentials, upload and recognition; credentials; the
        // refused ones. A line is written when its reply is out already.
        TRY_COMPARE(service.log().count('\n'), 9);
        const QByteArray log = service.log();
        QVERIFY(log.endsWith('\n'));
        QCOMPARE(log.count("asr/process"), 3);
        QCOMPARE(log.count("upload/getsignsts"), 2);
        QCOMPARE(log.count("PUT "), 1);
        QVERIFY(!log.contains(QByteArray::number(LocalService::token())));
        QVERIFY(!log.contains("1234512345"));
        for (const char *name : {"SecurityToken", "AccessKeySecret", "dir"}) {
            const QString value = credentials.value(QLatin1String(name)).toString();
            QVERIFY(!value.isEmpty());
            QVERIFY2(!log.contains(value.toUtf8()), name);
        }
        QVERIFY2(!log.contains("whispered"), log.constData());
        QVERIFY2(!log.toLower().contains("security-token"), log.constData());
    }

    void aRequestCannotForgeALineOfTheLog()
    {
        LocalService service;
        QVERIFY(service.startWithoutDevelopmentToken());
        ServiceClient client(service.authority());
        client.verbatim("GET /a%0aforged%20line", QByteArray());
        TRY_VERIFY(service.log().contains('\n'));
        QCOMPARE(service.log().count('\n'), 1);
        QVERIFY(service.log().endsWith('\n'));
    }
};

QTEST_GUILESS_MAIN(TestServiceProcess)
#include "tst_serviceprocess.moc"
