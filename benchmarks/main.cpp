// Does a work over and over and prints what that took. The folder that it runs in has
// authority.pem, the authority that the server's certificate is signed by.
//
//   contest CONTENDER WORK COUNT
#include "benchmarks/contender.h"
#include "benchmarks/meter.h"
#include "benchmarks/work.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QLoggingCategory>
#include <QSslCertificate>
#include <QSslConfiguration>

#include <algorithm>
#include <cstdio>
#include <iterator>

namespace {

constexpr struct
{
    const char *name;
    std::unique_ptr<Contender> (*make)();
} contenders[] = {
    {"bare", makeBare},
    {"bare-get", makeBareGet},
    {"bounded-64", makeBounded64},
    {"bounded-256", makeBounded256},
    {"http2", makeHttp2},
    {"toolkit", makeToolkit},
    {"service", makeService},
    {"by-hand", makeByHand},
    {"curl-easy", makeCurlEasy},
    {"curl-multi", makeCurlMulti},
};

std::unique_ptr<Contender> contenderNamed(const char *name)
{
    const auto *found =
        std::find_if(std::begin(contenders), std::end(contenders),
                     [name](const auto &known) { return qstrcmp(known.name, name) == 0; });
    return found == std::end(contenders) ? nullptr : found->make();
}

void trustAuthority()
{
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setCaCertificates(QSslCertificate::fromPath(QStringLiteral("authority.pem")));
    QSslConfiguration::setDefaultConfiguration(tls);
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    trustAuthority();
    const Work *work = argc == 4 ? workNamed(argv[2]) : nullptr;
    const std::unique_ptr<Contender> contender = work ? contenderNamed(argv[1]) : nullptr;
    bool isNumber = false;
    const int count = contender ? QByteArray(argv[3]).toInt(&isNumber) : 0;
    if (!isNumber)
        qFatal("usage: contest CONTENDER WORK COUNT");
    if (const Work *warmUp = warmUpFor(*work))
        contender->perform(*warmUp, 1);
    std::remove(downloadedFile); // freeing what the disk's cache holds of it is not the download's
    const Meter meter;
    contender->perform(*work, count);
    meter.print();
    return 0;
}
