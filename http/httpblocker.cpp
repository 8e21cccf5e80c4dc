#include "http/httpblocker.h"

#include "http/replykeeper.h"

#include <QNetworkReply>

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
    const ReplyKeeper keeper(qobject_cast<QNetworkReply *>(parent()));
    exec();
}
