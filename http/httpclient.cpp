#include "http/httpclient.h"

#include "http/httpresponse.h"

#include <QNetworkReply>

namespace {

// A reply that reports an error is not used further.
bool isInUse(const QNetworkReply *reply)
{
    if (reply->error() != QNetworkReply::NoError)
        return false;
    const auto *response = reply->findChild<HttpResponse *>(QString(), Qt::FindDirectChildrenOnly);
    return response && response->isDelivering();
}

// Aborted, until control is back in the event loop; silent for good, since the access manager that
// is about to go listens to it as well.
void outlive(QNetworkReply *reply)
{
    delete reply->findChild<HttpResponse *>(QString(), Qt::FindDirectChildrenOnly);
    reply->blockSignals(true);
    reply->abort();
    reply->setParent(nullptr);
    reply->deleteLater();
}

} // namespace

// The access manager destroys its replies. One of them may be the one whose signal led here, and
// Qt goes on using a reply after it has emitted readyRead() or sslErrors().
HttpClient::~HttpClient()
{
    const auto replies = findChildren<QNetworkReply *>(QString(), Qt::FindDirectChildrenOnly);
    for (QNetworkReply *reply : replies) {
        if (isInUse(reply))
            outlive(reply);
    }
}
