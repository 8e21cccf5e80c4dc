#include "hostkit/failurereasons.h"
#include "hostkit/hostkit.h"
#include "hostkit/recognizejob.h"
#include "hostkit/tokenkeeper.h"
#include "hostkit/trust.h"

#include <QCoreApplication>
#include <QLoggingCategory>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication host(argc, argv);
    if (argc < 3 || !Trust::add(host.arguments().at(1)).isEmpty()) {
        qWarning("usage: recognize-host AUTHORITY.pem RECORDING.wav [TOKEN]");
        return 2;
    }
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    const FailureReasons reasons;
    HostKit kit(QStringLiteral("recognize-host"));
    if (argc > 3) // without a token that of the user who has signed in is used
        kit.tokens()->setToken(host.arguments().at(3).toLongLong());

    RecognizeJob job(&kit, host.arguments().at(2));
    job.setTimeout(600000);
    QObject::connect(&job, &Job::progressed, [](Job::Stage stage, qint64 done, qint64 total) {
        if (stage == Job::Stage::Uploading)
            std::fprintf(stderr, "%lld of %lld bytes\n", done, total);
    });
    QObject::connect(&job, &RecognizeJob::succeeded, [](const QString &text) {
        std::printf("%s\n", qPrintable(text));
        QCoreApplication::exit(0);
    });
    QObject::connect(&job, &Job::failed, [](const Reason &reason) {
        qWarning("%s", qPrintable(reason.line()));
        QCoreApplication::exit(1);
    });
    job.start();
    return host.exec();
}
