#include "http/httpresponsetimeout.h"

#include "http/httpresponse.h"

#include <QTimer>

HttpResponseTimeout::HttpResponseTimeout(int ms, HttpResponse *response)
    : QObject(response)
{
    QTimer::singleShot(ms, response, SLOT(onTimeout()));
}

HttpResponseTimeout::~HttpResponseTimeout() = default;
