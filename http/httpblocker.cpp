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
    // Qt reports an error before the reply has finished. A receiver of the error may call
    // deleteLater() on the reply, and this loop would delete the reply, its own parent, while it
    // runs.
    const ReplyKeeper keeper(reply);
    const QPointer<HttpBlocker> blocker(new HttpBlocker(reply)); // the reply's child
    blocker->wait();
    delete blocker;
}

bool HttpBlocker::waitIfAsked(HttpResponse *response)
{
    const HttpRequestFields &fields = response->request().fields;
    if (!fields.block || !fields.reply)
        return true;
    const QPointer<HttpResponse> living(response);
    waitFor(fields.reply);
    return !living.isNull();
}

// exec() returns at once on a thread that was told to quit and is still in its own event loop. A
// worker that sends its last message from there has to wait all the same. That exec() has waited
// shows in that a queued call was made.
void HttpBlocker::wait()
{
    const QPointer<HttpBlocker> self(this);
    const auto *reply = qobject_cast<QNetworkReply *>(parent());
    bool hasBegun = false;
    QObject context; // drops the call when it goes
    QMetaObject::invokeMethod(
        &context, [&hasBegun] { hasBegun = true; }, Qt::QueuedConnection);
    exec();
    if (hasBegun)
        return;
    while (self && !reply->isFinished())
        processEvents(QEventLoop::WaitForMoreEvents);
}
