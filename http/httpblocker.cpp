#include "http/httpblocker.h"

#include "http/replykeeper.h"

#include <QNetworkReply>
#include <QPointer>

HttpBlocker::HttpBlocker(QNetworkReply *reply)
    : QEventLoop(reply)
{
    connect(reply, &QNetworkReply::finished, this, &QEventLoop::quit);
}

HttpBlocker::~HttpBlocker() = default;

void HttpBlocker::wait()
{
    // A failure is announced before the reply has finished, and whoever hears of it may delete the
    // reply later: that is, in this loop, which belongs to the reply.
    auto *reply = qobject_cast<QNetworkReply *>(parent());
    const ReplyKeeper keeper(reply);
    const QPointer<HttpBlocker> self(this);
    bool hasBegun = false;
    QObject context; // takes the call with it if it was not made
    QMetaObject::invokeMethod(
        &context, [&hasBegun] { hasBegun = true; }, Qt::QueuedConnection);
    exec();
    if (hasBegun)
        return;
    // Once a thread has been told to quit, exec() returns at once: a worker that sends its last
    // message, an application whose loop has ended.
    while (self && !reply->isFinished())
        processEvents(QEventLoop::WaitForMoreEvents);
}
