#pragma once

#include <QNetworkAccessManager>

/// The access manager on which requests are made. It belongs to its parent or its creator, and
/// requests are sent from its thread only. Destroying it ends its requests without an answer. It
/// may be destroyed from inside a callback of its own requests, except where Qt is in the middle of
/// using it: Redirected, AuthenticationRequired, AuthenticationRequireFailed and
/// PreSharedKeyAuthenticationRequired.
class HttpClient : public QNetworkAccessManager
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpClient)

public:
    using QNetworkAccessManager::QNetworkAccessManager;
    ~HttpClient() override;
};
