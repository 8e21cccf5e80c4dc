#include "tests/soak/pathserver.h"
#include "tests/soak/toolkitsoak.h"
#include "tests/support/patience.h"

#include <QCoreApplication>
#include <QMap>
#include <QProcess>
#include <QSocketNotifier>

#include <cstdio>
#include <unistd.h>

namespace {

QMap<QString, int> warnings;

// Qt's network layer says the same few things about itself very often.
void countWarning(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    Q_UNUSED(type)
    Q_UNUSED(context)
    ++warnings[text];
}

// In a process of its own, so that the memory that is measured is the toolkit's alone. It ends with
// its standard input.
int serve()
{
    PathServer server;
    if (!server.listen(QHostAddress::LocalHost))
        return 1;
    std::printf("%d\n", int(server.serverPort()));
    std::fflush(stdout);
    const QSocketNotifier end(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&end, &QSocketNotifier::activated, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    return QCoreApplication::exec();
}

int soak(int requests, unsigned seed)
{
    QProcess server;
    server.start(QCoreApplication::applicationFilePath(), {QStringLiteral("serve")});
    if (!server.waitForReadyRead(patienceMs))
        return 1;
    qInstallMessageHandler(countWarning);
    ToolkitSoak soak("http://localhost:" + server.readLine().trimmed(), requests, seed);
    QCoreApplication::exec();
    server.closeWriteChannel();
    server.waitForFinished(patienceMs);
    for (auto warning = warnings.cbegin(); warning != warnings.cend(); ++warning)
        std::printf("%d times: %s\n", warning.value(), qPrintable(warning.key()));
    return soak.report() ? 0 : 1;
}

} // namespace

// toolkit-soak [REQUESTS [SEED]]
int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QStringLiteral("serve"))
        return serve();
    const int requests = arguments.value(1, QStringLiteral("50000")).toInt();
    return soak(requests, arguments.value(2, QStringLiteral("1")).toUInt());
}
