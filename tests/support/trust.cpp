#include "tests/support/trust.h"

#include <QFile>

namespace {

QString inFolder(const QString &name) { return QStringLiteral(CERTIFICATE_FOLDER "/") + name; }

QByteArray contents(const QString &fileName)
{
    QFile file(fileName);
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
    case Identity::CommonName:
        return QStringLiteral("commonname");
    case Identity::Expired:
        return QStringLiteral("expired");
    case Identity::Foreign:
        return QStringLiteral("foreign");
    case Identity::Stranger:
        return QStringLiteral("stranger");
    }
    return QString();
}

} // namespace

QSslCertificate certificateOf(Identity identity)
{
    return QSslCertificate(contents(certificateFile(identity)));
}

QSslKey keyOf(Identity identity) { return QSslKey(contents(keyFile(identity)), QSsl::Ec); }

QString certificateFile(Identity identity)
{
    return inFolder(nameOf(identity) + QStringLiteral(".pem"));
}

QString keyFile(Identity identity) { return inFolder(nameOf(identity) + QStringLiteral(".key")); }

TrustTestAuthority::TrustTestAuthority()
    : m_previous(QSslConfiguration::defaultConfiguration())
{
    QSslConfiguration trusting = m_previous;
    trusting.setCaCertificates(
        {QSslCertificate(contents(inFolder(QStringLiteral("authority.pem"))))});
    QSslConfiguration::setDefaultConfiguration(trusting);
}

TrustTestAuthority::~TrustTestAuthority()
{
    QSslConfiguration::setDefaultConfiguration(m_previous);
}
