#include "http/httpclient.h"

#include "http/httpresponse.h"

#include <QCoreApplication>
#include <QEvent>
#include <QNetworkReply>

namespace {

bool isDelivering(const QNetworkReply *reply)
{
    const auto *response = reply->findChild<HttpResponse *>(QString(), Qt::FindDirectChildrenOnly);
    return response && response->isDelivering();
}

// Aborted, until control is back in the event loop; silent for good, since the access manager that
// is about to go listens to it as well, and without the calls that Qt has posted to it, which would
// use the manager.
void outlive(QNetworkReply *reply)
{
    delete reply->findChild<HttpResponse *>(QString(), Qt::FindDirectChildrenOnly);
    reply->blockSignals(true);
    reply->abort();
    QCoreApplication::removePostedEvents(reply, QEvent::MetaCall);
    reply->setParent(nullptr);
    reply->deleteLater();
}

} // namespace

// The access manager destroys its replies. One of them may be the one whose signal led here, and
// Qt goes on using a reply after it has emitted a signal.
HttpClient::~HttpClient()
{
    const auto replies = findChildren<QNetworkReply *>(QString(), Qt::FindDirectChildrenOnly);
    for (QNetworkReply *reply : replies) {
        if (isDelivering(reply))
            outlive(reply);
    }
}
