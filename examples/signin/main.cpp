#include "hostkit/failurereasons.h"
#include "hostkit/hostkit.h"
#include "hostkit/signinjobs.h"
#include "hostkit/trust.h"

#include <QCoreApplication>
#include <QLoggingCategory>
#include <QTextStream>

#include <cstdio>

int main(int argc, char **argv)
{
    QCoreApplication host(argc, argv);
    if (argc != 3 || !Trust::add(host.arguments().at(1)).isEmpty()) {
        qWarning("usage: signin-host AUTHORITY.pem PHONE");
        return 2;
    }
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    const FailureReasons reasons;
    HostKit kit(QStringLiteral("signin-host"));

    SmsSignInJob job(&kit, host.arguments().at(2));
    QObject::connect(&job, &SmsSignInJob::codeSent, [&job] {
        std::printf("code: \n"); // a host with windows shows a field instead of waiting here
        std::fflush(stdout);
        job.enter(QTextStream(stdin).readLine().trimmed());
    });
    QObject::connect(&job, &SignInJob::succeeded, [](const UserInfo &user) {
        std::printf("signed in as %s\n", qPrintable(user.nickname));
        QCoreApplication::exit(0);
    });
    QObject::connect(&job, &Job::failed, [](const Reason &reason) {
        qWarning("%s", qPrintable(reason.line()));
        QCoreApplication::exit(1);
    });
    job.start();
    return host.exec();
}
