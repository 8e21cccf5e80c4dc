#include "network/vonetwork.h"
#include "network/vonetworkintf.h"

#include <QCoreApplication>
#include <QFile>
#include <QSslConfiguration>

int main(int argc, char **argv)
{
    QCoreApplication host(argc, argv);
    const QList<QSslCertificate> authority =
        argc == 2 ? QSslCertificate::fromPath(host.arguments().at(1)) : QList<QSslCertificate>();
    if (authority.isEmpty()) {
        qWarning("usage: minimal-host AUTHORITY.pem");
        return 2;
    }
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setCaCertificates(QSslConfiguration::systemCaCertificates() + authority);
    QSslConfiguration::setDefaultConfiguration(tls);

    VoNetworkIntf *service = VoNetwork::CreateVoNetworkIntf();
    QObject::connect(service, &VoNetworkIntf::signalTTSRet, &host,
                     [service](TTS_STATUS status, const QString &audioBase64) {
                         VoNetwork::ReleaseVoNetwork(service); // goes when the event loop ends
                         QFile file(QStringLiteral("hello.wav"));
                         if (status != TTS_SUCCESS || !file.open(QFile::WriteOnly))
                             return QCoreApplication::exit(1);
                         file.write(QByteArray::fromBase64(audioBase64.toLatin1()));
                         QCoreApplication::exit(0);
                     });

    TTSParams params{QStringLiteral("hello world"),
                     QStringLiteral("wav"),
                     16000,
                     QStringLiteral("rms"),
                     50,
                     0,
                     0,
                     QStringLiteral("readme")};
    service->TTS(&params, true, 0); // anonymous: no token is sent
    return host.exec();
}
