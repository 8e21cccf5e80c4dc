#pragma once

#include <QObject>

class HttpResponse;

/// The time-out of a response, and its child. HttpRequest::timeout() asks for one; hosts have no
/// other use for it.
class HttpResponseTimeout : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HttpResponseTimeout)

public:
    /// Starts at once, on the thread of @p response, which is not null. After @p ms milliseconds (1
    /// and more), which progress does not prolong, the reply is aborted if it is still running:
    /// HttpResponse::timeout() follows.
    HttpResponseTimeout(int ms, HttpResponse *response);
    ~HttpResponseTimeout() override;
};
