#include "http/httpresponsetimeout.h"

#include "http/httpresponse.h"

#include <QEventLoop>
#include <QTimer>

HttpResponseTimeout::HttpResponseTimeout(int ms, HttpResponse *response)
    : QObject(response)
{
    // A thread that Qt did not start has no timers before an event loop was made in it.
    const QEventLoop loop;
    auto *timer = new QTimer(this);
    timer->setSingleShot(true);
    timer->setTimerType(ms > 2000 ? Qt::CoarseTimer : Qt::PreciseTimer); // coarse: within 5 %
    connect(timer, SIGNAL(timeout()), response, SLOT(onTimeout()));
    timer->start(ms);
}

HttpResponseTimeout::~HttpResponseTimeout() = default;
