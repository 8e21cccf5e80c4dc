#pragma once

#include <QObject>

class HttpResponse;

/// Ends the exchange of a response after a time. A child of the response, so it goes with it.
class HttpResponseTimeout : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpResponseTimeout)

public:
    /// Begins at once. After @p ms, which progress does not prolong, a reply that is still running
    /// is aborted.
    HttpResponseTimeout(int ms, HttpResponse *response);
    ~HttpResponseTimeout() override;
};
