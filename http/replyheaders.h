#pragma once

#include <QList>
#include <QNetworkReply>

/// The headers of the answer that a reply ends with. After a redirect that is followed Qt sometimes
/// reports the redirecting answer a second time, and joins its headers with those of the next one;
/// here they are taken apart again.
class ReplyHeaders
{
public:
    /// For each redirected() and redirectAllowed() of the reply.
    void onRedirected();

    /// For each metaDataChanged() of the reply.
    void onMetaDataChanged(const QNetworkReply &reply);

    /// Names and values, in the order of @p reply.
    QList<QNetworkReply::RawHeaderPair> of(const QNetworkReply &reply) const;

private:
    bool m_isRedirected = false;
    /// What Qt still has of a redirecting answer.
    QList<QNetworkReply::RawHeaderPair> m_redirecting;
};
