#include "start/serviceprocess.h"
#include "tests/support/leaks.h"
#include "tests/support/patience.h"
#include "tests/support/testfolder.h"
#include "tests/system/home.h"

#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include <cstdio>
#include <unistd.h>
#include <utility>

namespace {

QString startsService() { return QStringLiteral("--start-service"); }

// Of the program @p pid, in seconds.
double cpuTime(qint64 pid)
{
    const QByteArray all = TestFolder::contents(QStringLiteral("/proc/%1/stat").arg(pid));
    const QList<QByteArray> fields = all.mid(all.lastIndexOf(')') + 2).split(' ');
    return (fields.value(11).toDouble() + fields.value(12).toDouble())
           / double(sysconf(_SC_CLK_TCK));
}

bool isServed()
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("localhost"), SERVICE_PORT);
    return socket.waitForConnected(patienceMs);
}

// A host that has the local service, as vodesk has it.
int runHost(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    ServiceProcess service;
    QObject::connect(&service, &ServiceProcess::ready, [] {
        std::puts("ready");
        std::fflush(stdout);
    });
    QObject::connect(&service, &ServiceProcess::failed, [] { QCoreApplication::exit(1); });
    service.start();
    return QCoreApplication::exec();
}

} // namespace

/// The processes of vodesk and of its local service.
class TestProcesses : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstWindowTakesLessThan300msOfCpu()
    {
        QTcpServer server; // it is asked when the window is shown, and stays silent
        QVERIFY(server.listen(QHostAddress::LocalHost, SERVICE_PORT));
        QProcess vodesk;
        vodesk.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        vodesk.start(QStringLiteral(VODESK), QStringList());
        TRY_VERIFY(server.hasPendingConnections());
        double seconds = 0; // until it has nothing more to do
        const auto isIdle = [&] {
            const double before = std::exchange(seconds, cpuTime(vodesk.processId()));
            return before > 0 && seconds == before;
        };
        while (!isIdle())
            QTest::qWait(100);
        qInfo("the first window takes %.2f s of CPU", seconds);
#ifndef VONETWORK_HAS_LEAK_CHECK
        QVERIFY(seconds > 0);
        QVERIFY(seconds < 0.3);
#endif
        vodesk.kill();
        QVERIFY(vodesk.waitForFinished(patienceMs));
    }

    void theServiceEndsWithAWindowThatIsKilled()
    {
        QProcess host;
        host.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        host.start(QCoreApplication::applicationFilePath(), {startsService()});
        QVERIFY(host.waitForReadyRead(patienceMs));
        QVERIFY(isServed());
        host.kill();
        QVERIFY(host.waitForFinished(patienceMs));
        TRY_VERIFY(!isServed());
    }

private:
    const Home m_home;
};

int main(int argc, char *argv[])
{
    if (argc == 2 && startsService() == QString::fromLocal8Bit(argv[1]))
        return runHost(argc, argv);
    const QCoreApplication application(argc, argv);
    TestProcesses test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_processes.moc"
