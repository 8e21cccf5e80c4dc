#include "http/httpresponsetimeout.h"

#include "http/httpresponse.h"

#include <QEventLoop>
#include <QTimer>

HttpResponseTimeout::HttpResponseTimeout(int ms, HttpResponse *response)
    : QObject(response)
{
    // A thread that Qt did not start has no timers until an event loop was made in it.
    const QEventLoop loop;
    QTimer::singleShot(ms, response, SLOT(onTimeout()));
}

HttpResponseTimeout::~HttpResponseTimeout() = default;
