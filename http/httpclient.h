#pragma once

#include <QNetworkAccessManager>

/// The access manager that sends requests. It belongs to its parent or its creator, and requests
/// are sent from its thread only. Its destruction ends its requests; no callback follows.
///
/// It may be destroyed from inside a callback of its own requests, except where Qt waits for
/// credentials: AuthenticationRequired, AuthenticationRequireFailed and
/// PreSharedKeyAuthenticationRequired. From inside Encrypted and SslErrors the destruction takes
/// about 5 s: Qt's network thread waits for the callback, and Qt waits for the thread.
class HttpClient : public QNetworkAccessManager
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpClient)

public:
    using QNetworkAccessManager::QNetworkAccessManager;
    ~HttpClient() override;
};
