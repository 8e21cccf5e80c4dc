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

// Aborted, until the receivers have returned; silent for good, since the access manager that
// is about to go listens to it as well, and without the calls that Qt has posted to it, which would
// use the manager.
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

// The access manager destroys its replies. One of them may be the one whose signal led here, and
// Qt goes on using a reply after it has emitted a signal; or one whose end somebody waits for.
HttpClient::~HttpClient()
{
    const auto replies = findChildren<QNetworkReply *>(QString(), Qt::FindDirectChildrenOnly);
    for (QNetworkReply *reply : replies) {
        if (ReplyKeeper::isInUse(reply))
            outlive(reply);
    }
}
