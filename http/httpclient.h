#pragma once

#include <QNetworkAccessManager>

/// The access manager on which requests are made. It belongs to its parent or its creator, and
/// requests are sent from its thread only. Destroying it ends its requests without an answer.
class HttpClient : public QNetworkAccessManager
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpClient)

public:
    using QNetworkAccessManager::QNetworkAccessManager;
};
