#include "tests/support/trust.h"

#include <QFile>

namespace {

QByteArray contents(const QString &name)
{
    QFile file(QStringLiteral(CERTIFICATE_FOLDER "/") + name);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("cannot read %s", qPrintable(file.fileName()));
    return file.readAll();
}

QString nameOf(Identity identity)
{
    switch (identity) {
    case Identity::Localhost:
        return QStringLiteral("localhost");
    case Identity::Elsewhere:
        return QStringLiteral("elsewhere");
    case Identity::Stranger:
        return QStringLiteral("stranger");
    }
    return QString();
}

} // namespace

QSslCertificate certificateOf(Identity identity)
{
    return QSslCertificate(contents(nameOf(identity) + QStringLiteral(".pem")));
}

QSslKey keyOf(Identity identity)
{
    return QSslKey(contents(nameOf(identity) + QStringLiteral(".key")), QSsl::Ec);
}

TrustTestAuthority::TrustTestAuthority()
    : m_previous(QSslConfiguration::defaultConfiguration())
{
    QSslConfiguration trusting = m_previous;
    trusting.setCaCertificates({QSslCertificate(contents(QStringLiteral("authority.pem")))});
    QSslConfiguration::setDefaultConfiguration(trusting);
}

TrustTestAuthority::~TrustTestAuthority()
{
    QSslConfiguration::setDefaultConfiguration(m_previous);
}
