#include "serveraddress.h"

#include <QString>
#include <QUrl>

// Read as the library and the toolkit read it.
bool ServerAddress::isUsable(const QString &address)
{
    const QUrl url(address, QUrl::TolerantMode);
    return url.scheme() == QLatin1String("https") && !url.host().isEmpty();
}
