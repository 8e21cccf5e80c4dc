#include "http/httpblocker.h"

#include "http/httpresponse.h"
#include "http/replykeeper.h"

#include <QNetworkReply>
#include <QPointer>

HttpBlocker::HttpBlocker(QNetworkReply *reply)
    : QEventLoop(reply)
{
    connect(reply, &QNetworkReply::finished, this, &QEventLoop::quit);
}

HttpBlocker::~HttpBlocker() = default;

void HttpBlocker::waitFor(QNetworkReply *reply)
{
    // A failure is announced before the reply has finished, and whoever hears of it may delete the
    // reply later: that is, in this loop, which belongs to the reply.
    const ReplyKeeper keeper(reply);
    const QPointer<HttpBlocker> blocker(new HttpBlocker(reply)); // the reply's child
    blocker->wait();
    delete blocker;
}

bool HttpBlocker::waitIfAsked(HttpResponse *response)
{
    const QPointer<HttpResponse> living(response);
    const HttpRequestFields &fields = response->request().fields;
    if (fields.block && fields.reply)
        waitFor(fields.reply);
    return !living.isNull();
}

// Once a thread has been told to quit, exec() returns at once for as long as its own loop has not:
// to a worker that sends its last message it would not wait at all.
void HttpBlocker::wait()
{
    const QPointer<HttpBlocker> self(this);
    const auto *reply = qobject_cast<QNetworkReply *>(parent());
    bool hasBegun = false;
    QObject context; // takes the call with it if it was not made
    QMetaObject::invokeMethod(
        &context, [&hasBegun] { hasBegun = true; }, Qt::QueuedConnection);
    exec();
    if (hasBegun)
        return;
    while (self && !reply->isFinished())
        processEvents(QEventLoop::WaitForMoreEvents);
}
