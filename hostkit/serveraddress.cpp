#include "hostkit/serveraddress.h"

#include <QString>
#include <QUrl>

// The address is parsed in the same mode as in the library and the toolkit.
bool ServerAddress::isUsable(const QString &address)
{
    const QUrl url(address, QUrl::TolerantMode);
    return url.scheme() == QLatin1String("https") && !url.host().isEmpty();
}
