#include "hostkit/trust.h"

#include <QCoreApplication>
#include <QFile>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QString>

QString Trust::add(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QCoreApplication::translate("Trust", "cannot read \"%1\": %2")
            .arg(path, file.errorString());
    const QList<QSslCertificate> authorities = QSslCertificate::fromDevice(&file, QSsl::Pem);
    if (authorities.isEmpty())
        return QCoreApplication::translate("Trust", "there is no certificate in \"%1\"").arg(path);

    // Qt loads the system's authorities on demand, but not beside a list that is set. The list has
    // to have them.
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(QSslConfiguration::systemCaCertificates() + authorities);
    QSslConfiguration::setDefaultConfiguration(configuration);
    return {};
}
