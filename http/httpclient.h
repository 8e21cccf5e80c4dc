#pragma once

#include <QNetworkAccessManager>

/// The access manager on which requests are made. It belongs to its parent or its creator, and
/// requests are sent from its thread only. Destroying it ends its requests without an answer. It
/// may be destroyed from inside a callback of its own requests, except those in which Qt waits for
/// it to be told credentials: AuthenticationRequired, AuthenticationRequireFailed and
/// PreSharedKeyAuthenticationRequired. In Encrypted and SslErrors that takes about 5 s: Qt's
/// network thread waits for the callback, and Qt waits for the thread.
class HttpClient : public QNetworkAccessManager
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpClient)

public:
    using QNetworkAccessManager::QNetworkAccessManager;
    ~HttpClient() override;
};
