#include "tests/support/patience.h"
#include "tests/system/localservice.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QtTest>

#include <csignal>
#include <sys/stat.h>

namespace {

int rightsOf(const QString &name)
{
    struct stat status = {};
    return stat(QFile::encodeName(name).constData(), &status) == 0 ? int(status.st_mode & 0777U)
                                                                   : -1;
}

QByteArray contents(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// Puts an authority into @p folder that is valid from 2099 on, and whatever belongs to it.
bool makeFutureAuthority(const QString &folder)
{
    QProcess shell;
    shell.setWorkingDirectory(folder);
    shell.start(
        QStringLiteral("bash"),
        {QStringLiteral("-euc"),
         QStringLiteral(
             "openssl req -new -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes"
             " -keyout server-key.pem -out request -subj /CN=localhost\n"
             "touch index\n"
             "openssl ca -batch -selfsign -notext -create_serial -config <(printf '[ca]\\n"
             "default_ca=all\\n[all]\\ndatabase=index\\nserial=serial\\ndefault_md=sha256\\n"
             "policy=any\\n[any]\\ncommonName=supplied\\n') -keyfile server-key.pem -in request"
             " -out authority.pem -outdir . -startdate 20990101000000Z -enddate 21000101000000Z\n"
             "cp authority.pem server.pem")});
    return shell.waitForFinished(patienceMs) && shell.exitStatus() == QProcess::NormalExit
           && shell.exitCode() == 0;
}

} // namespace

/// What the service makes of its data folder when it begins.
class TestServiceData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { m_service.reset(new LocalService); }

    void aFolderIsForOneServiceAtATime()
    {
        QVERIFY(m_service->start());
        const QByteArray authority = contents(m_service->authority());
        QVERIFY(!authority.isEmpty());
        QCOMPARE(errorOfAnother(),
                 "vo-localservice: another service uses \"" + folder().toLocal8Bit() + "\"\n");
        QCOMPARE(contents(m_service->authority()), authority);
    }

    void theFolderIsFreeWhenItsServiceWasKilled()
    {
        QVERIFY(m_service->start());
        QCOMPARE(m_service->stop(SIGKILL), -1);
        QVERIFY(m_service->start());
    }

    void anAuthorityOfTheFutureIsToldAndKept_data()
    {
        QTest::addColumn<QString>("missing");
        QTest::newRow("nothing is missing") << QString();
        QTest::newRow("the key is missing") << QStringLiteral("tls/server-key.pem");
        QTest::newRow("the certificate is missing") << QStringLiteral("tls/server.pem");
    }
    void anAuthorityOfTheFutureIsToldAndKept()
    {
        QFETCH(const QString, missing);
        QVERIFY(m_service->start());
        QCOMPARE(m_service->stop(SIGTERM), 0);
        QVERIFY(makeFutureAuthority(m_service->dataFile(QStringLiteral("tls"))));
        const QByteArray authority = contents(m_service->authority());
        QVERIFY(!authority.isEmpty());
        QVERIFY(missing.isEmpty() || QFile::remove(m_service->dataFile(missing)));
        QCOMPARE(errorOfAnother(),
                 "vo-localservice: \"" + m_service->authority().toLocal8Bit()
                     + "\" is not valid yet: set the clock right, or remove the file and trust the "
                       "new authority\n");
        QCOMPARE(contents(m_service->authority()), authority);
        QVERIFY(QFile::remove(m_service->authority()));
        QVERIFY(m_service->start());
    }

    void whatIsOpenToOthersIsClosedAtTheStart_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("rights");
        QTest::newRow("key") << QStringLiteral("tls/server-key.pem") << 0600;
        QTest::newRow("database") << QStringLiteral("accounts.sqlite") << 0600;
        QTest::newRow("certificates") << QStringLiteral("tls") << 0700;
        QTest::newRow("objects") << QStringLiteral("storage") << 0700;
    }
    void whatIsOpenToOthersIsClosedAtTheStart()
    {
        QFETCH(const QString, name);
        QVERIFY(m_service->start());
        const QString file = m_service->dataFile(name);
        QTEST(rightsOf(file), "rights");
        QCOMPARE(m_service->stop(SIGTERM), 0);
        QCOMPARE(chmod(QFile::encodeName(file).constData(), 0755), 0);
        QVERIFY(m_service->start());
        QTEST(rightsOf(file), "rights");
    }

private:
    QString folder() const { return QFileInfo(m_service->dataFile(QString())).path(); }

    // What another service with the same folder says when it ends with status 1; empty otherwise.
    QByteArray errorOfAnother() const
    {
        QProcess other;
        other.start(LocalService::program(), {QStringLiteral("--port"), QStringLiteral("0"),
                                              QStringLiteral("--data"), folder()});
        const bool hasRefused = other.waitForFinished(patienceMs)
                                && other.exitStatus() == QProcess::NormalExit
                                && other.exitCode() == 1;
        return hasRefused ? other.readAllStandardError() : QByteArray();
    }

    QScopedPointer<LocalService> m_service;
};

QTEST_GUILESS_MAIN(TestServiceData)
#include "tst_servicedata.moc"
