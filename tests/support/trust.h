#pragma once

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QString>
#include <QtGlobal>

/// The certificates that the test servers show.
enum class Identity {
    Localhost,  ///< Right name, signed by the test authority.
    Elsewhere,  ///< Another name, signed by the test authority.
    CommonName, ///< Right name, but not among the alternative names; signed by the test authority.
    Expired,    ///< Right name, signed by the test authority, over since yesterday.
    Foreign,    ///< Right name, signed by an authority that nobody knows.
    Stranger,   ///< Right name, signed by itself.
};

QSslCertificate certificateOf(Identity identity);
QSslKey keyOf(Identity identity);

/// The certificate and the key as files, for servers in other processes.
QString certificateFile(Identity identity);
QString keyFile(Identity identity);

/// Makes every TLS client of this process trust the test authority, and it alone, while it lives.
class TrustTestAuthority
{
    Q_DISABLE_COPY(TrustTestAuthority)

public:
    TrustTestAuthority();
    ~TrustTestAuthority();

private:
    QSslConfiguration m_previous;
};
