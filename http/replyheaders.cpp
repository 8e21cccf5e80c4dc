#include "http/replyheaders.h"

#include <algorithm>

namespace {

bool isRedirecting(const QNetworkReply &reply)
{
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return status >= 300 && status < 400;
}

// Qt joins values of one name with a comma, those of Set-Cookie with a line feed, and replaces
// Location. A value that is unchanged has got no addition: the answer has no such header.
QByteArray valueAfter(const QByteArray &redirecting, const QByteArray &joined)
{
    for (const char *separator : {", ", "\n"}) {
        const QByteArray before = redirecting + separator;
        if (joined.startsWith(before))
            return joined.mid(before.size());
    }
    return joined == redirecting ? QByteArray() : joined;
}

} // namespace

// The headers that Qt has at that moment it drops itself.
void ReplyHeaders::onRedirected()
{
    m_isRedirected = true;
    m_redirecting.clear();
}

void ReplyHeaders::onMetaDataChanged(const QNetworkReply &reply)
{
    if (m_isRedirected && isRedirecting(reply))
        m_redirecting = reply.rawHeaderPairs();
}

QList<QNetworkReply::RawHeaderPair> ReplyHeaders::of(const QNetworkReply &reply) const
{
    const QList<QNetworkReply::RawHeaderPair> joined = reply.rawHeaderPairs();
    if (m_redirecting.isEmpty() || isRedirecting(reply))
        return joined;
    QList<QNetworkReply::RawHeaderPair> own;
    for (const QNetworkReply::RawHeaderPair &header : joined) {
        const auto redirecting = std::find_if(
            m_redirecting.cbegin(), m_redirecting.cend(), [&header](const auto &candidate) {
                return candidate.first.compare(header.first, Qt::CaseInsensitive) == 0;
            });
        if (redirecting == m_redirecting.cend()) {
            own.append(header);
            continue;
        }
        const QByteArray value = valueAfter(redirecting->second, header.second);
        if (!value.isEmpty())
            own.append({header.first, value});
    }
    return own;
}
