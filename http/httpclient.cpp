#include "http/httpclient.h"

#include "http/httpblocker.h"
#include "http/httpresponse.h"
#include "http/replykeeper.h"

#include <QCoreApplication>
#include <QEvent>
#include <QNetworkReply>

namespace {

template <typename Child>
Child *childOf(const QNetworkReply *reply)
{
    return reply->findChild<Child *>(QString(), Qt::FindDirectChildrenOnly);
}

// Lets the reply stay until those that use it have returned. It is silent from here on, because the
// access manager that is about to go listens to it too. Calls that Qt has queued to the reply would
// use the manager, so they are dropped.
void outlive(QNetworkReply *reply)
{
    reply->blockSignals(true);
    reply->abort();
    delete childOf<HttpResponse>(reply);
    if (auto *blocker = childOf<HttpBlocker>(reply))
        blocker->quit();
    QCoreApplication::removePostedEvents(reply, QEvent::MetaCall);
    reply->setParent(nullptr);
    reply->deleteLater();
}

} // namespace

// An access manager destroys its replies. One that is in use has to stay: Qt goes on using the
// reply whose signal led here, and a blocking send() the reply that it waits for.
HttpClient::~HttpClient()
{
    const auto replies = findChildren<QNetworkReply *>(QString(), Qt::FindDirectChildrenOnly);
    for (QNetworkReply *reply : replies) {
        if (ReplyKeeper::isInUse(reply))
            outlive(reply);
    }
}
