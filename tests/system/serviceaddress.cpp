#include "serviceaddress.h"

#include <QUrl>

QString serviceAddress()
{
    bool isGiven = false;
    const int port = qEnvironmentVariableIntValue("VONETWORK_TEST_SERVICE_PORT", &isGiven);
    QUrl address(QStringLiteral(SERVICE_BASE_ADDRESS));
    if (isGiven)
        address.setPort(port);
    return address.toString();
}
