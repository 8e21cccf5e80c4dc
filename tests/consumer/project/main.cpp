#include "network/vonetwork.h"
#include "network/vonetworkintf.h"

#include <QCoreApplication>
#include <QtDebug>

// A host that asks a service to speak which does not answer or is not trusted, and ends well when
// it is told so.
int main(int argc, char **argv)
{
    QCoreApplication host(argc, argv);
    qInfo("%s", qPrintable(VoNetwork::GetAppVersion()));

    VoNetworkIntf *service = VoNetwork::CreateVoNetworkIntf();
    QObject::connect(service, &VoNetworkIntf::signalTTSRet, &host,
                     [service](TTS_STATUS status, const QString &audioBase64) {
                         VoNetwork::ReleaseVoNetwork(service);
                         const bool isToldSo = status == TTS_FAILED && audioBase64.isEmpty();
                         QCoreApplication::exit(isToldSo ? 0 : 1);
                     });
    TTSParams params;
    service->TTS(&params, true, 0);
    return host.exec();
}
